// SPDX-License-Identifier: Apache-2.0
// Metrics and reports, read by the programs that they are made for.
#include <csignal>
#include <filesystem>
#include <regex>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ctl/render/metrics.h"
#include "ctl/render/metrics_text.h"
#include "tests/ctl/ctl_test.h"

namespace kest::test {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct Ran {
  int exitCode;
  std::string output;
};

Ran Shell(const std::string &command) {
  const std::string path = PlayerTest::Path("ran");
  const int status = std::system(("{ " + command + "\n} >" + path + " 2>&1").c_str());
  return {WEXITSTATUS(status), ReadFile(path)};
}

bool IsInstalled(const std::string &program) {
  return Shell("command -v " + program).exitCode == 0;
}

// What the monitoring system's own tool finds wrong with the text.
std::string Complaints(const std::string &text) {
  WriteFile(PlayerTest::Path("text"), text);
  const Ran checked = Shell("promtool check metrics <" + PlayerTest::Path("text"));
  return checked.exitCode == 0 ? checked.output : "promtool: " + checked.output;
}

std::string OpenMetricsComplaints(const std::string &text) {
  WriteFile(PlayerTest::Path("text"), text);
  return Shell(
             "/usr/bin/python3 -c 'import sys; from prometheus_client.openmetrics.parser import *; "
             "list(text_string_to_metric_families(sys.stdin.read()))' <" +
             PlayerTest::Path("text"))
      .output;
}

class Metrics : public CtlTest {
 protected:
  void SetUp() override {
    if (!IsInstalled("promtool") || !IsInstalled("prometheus-node-exporter"))
      GTEST_SKIP() << "promtool and prometheus-node-exporter are not installed";
  }
};

// A node exporter that reads the files of a directory.
class NodeExporter {
 public:
  explicit NodeExporter(const std::string &directory) : address_("127.0.0.1:" + std::to_string(FreePort())) {
    pid_ = fork();
    if (pid_ != 0) return;
    execlp("prometheus-node-exporter", "prometheus-node-exporter", "--collector.disable-defaults",
           "--collector.textfile", ("--collector.textfile.directory=" + directory).c_str(),
           ("--web.listen-address=" + address_).c_str(), "--log.level=error", nullptr);
    _exit(127);
  }
  ~NodeExporter() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  NodeExporter(const NodeExporter &) = delete;
  NodeExporter &operator=(const NodeExporter &) = delete;

  // What the monitoring server gets.
  [[nodiscard]] std::string Scrape() const {
    std::string scraped;
    EXPECT_TRUE(WaitFor([&] {
      scraped = Shell("/usr/bin/python3 -c 'import urllib.request as u; print(u.urlopen(\"http://" +
                      address_ + "/metrics\").read().decode())'")
                    .output;
      return scraped.find("node_textfile_scrape_error") != std::string::npos;
    })) << scraped;
    return scraped;
  }

 private:
  static int FreePort() {
    const int any = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    EXPECT_EQ(0, bind(any, reinterpret_cast<sockaddr *>(&address), size));
    EXPECT_EQ(0, getsockname(any, reinterpret_cast<sockaddr *>(&address), &size));
    close(any);
    return ntohs(address.sin_port);
  }

  std::string address_;
  pid_t pid_ = -1;
};

TEST_F(Metrics, AreReadByTheMonitoringSystemsOwnTools) {
  const std::string down = Ctl("metrics").out;
  EXPECT_THAT(down, HasSubstr("\nkest_up 0\n"));
  EXPECT_EQ("", Complaints(down));
  StartPlayer();
  const std::string up = Ctl("metrics").out;
  EXPECT_THAT(up, HasSubstr("\nkest_up 1\n"));
  EXPECT_THAT(up,
              HasSubstr(R"(kest_port_ring_samples{pipeline="Decoder_13",filter="Volume",port="out0"} 256)"));
  EXPECT_THAT(up, HasSubstr(R"(kest_filter_gain_decibels{pipeline="Decoder_13",filter="Volume"} 0)"));
  EXPECT_THAT(up,
              HasSubstr(R"(kest_port_underruns_total{pipeline="SpeakerOutput",filter="Mixer",port="in0"} )"));
  EXPECT_THAT(up, Not(HasSubstr("pid")));
  EXPECT_EQ("", Complaints(up));
  const std::string open = Ctl("metrics --openmetrics --device 'a \"tv\" \\'").out;
  EXPECT_THAT(open, testing::EndsWith("\n# EOF\n"));
  EXPECT_EQ("", OpenMetricsComplaints(open));
}

TEST_F(Metrics, OddNamesAndEqualNamesAreQuotedAndCountedOnce) {
  ctl::Figures figures;
  figures.inside.emplace();
  for (const char *name : {"a\"b\\c\nd\xff{}", "same", "same"}) {
    figures.inside->listing.pipelines.emplace_back().name = name;
    figures.inside->listing.pipelines.back().filters.emplace_back().ports.emplace_back();
  }
  const auto families = ctl::MetricsOf(figures, "");
  EXPECT_EQ("", Complaints(ctl::ClassicText(families)));
  EXPECT_EQ("", OpenMetricsComplaints(ctl::OpenMetricsText(families)));
}

TEST_F(Metrics, OfSeveralDevicesComeThroughTheNodeExporter) {
  const std::string directory = Path("collected");
  fs::create_directory(directory);
  PlayerProcess &player = StartPlayer();
  EXPECT_EQ(0, Ctl("metrics -o " + directory + "/kest.prom").exitCode);
  EXPECT_EQ(0, Ctl("metrics --device far -o " + directory + "/far.prom").exitCode);
  const NodeExporter exporter(directory);
  const std::string up = exporter.Scrape();
  EXPECT_THAT(up, HasSubstr("node_textfile_scrape_error 0"));
  EXPECT_THAT(up, HasSubstr("\nkest_up 1\n"));
  EXPECT_THAT(up, HasSubstr("\nkest_up{device=\"far\"} 1\n"));
  player.Signal(SIGKILL);
  player.Wait();
  const CtlResult down = Ctl("metrics -o " + directory + "/kest.prom");
  EXPECT_EQ(0, down.exitCode);
  EXPECT_THAT(down.err, HasSubstr("kest_up is 0: no process reads"));
  EXPECT_THAT(exporter.Scrape(), HasSubstr("\nkest_up 0\n"));
  EXPECT_EQ(2, std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

TEST_F(Metrics, AreWrittenAgainUntilItIsInterrupted) {
  StartPlayer();
  const std::string path = Path("kest.prom");
  EXPECT_EQ(130, Ctl("metrics --watch 0.05 -o " + path, "timeout --preserve-status -s INT 1").exitCode);
  EXPECT_THAT(ReadFile(path), HasSubstr("kest_up 1"));
  EXPECT_EQ(2, Ctl("metrics --watch 1").exitCode);
  EXPECT_EQ(2, Ctl("metrics --watch 0 -o " + path).exitCode);
  EXPECT_EQ(2, Ctl("metrics --openmetrics -o " + path).exitCode);
  EXPECT_EQ(3, Ctl("metrics -o " + Path("missing") + "/kest.prom").exitCode);
  const std::string link = Path("link.prom");
  fs::create_symlink(path, link);
  fs::resize_file(path, 0);
  EXPECT_EQ(0, Ctl("metrics -o " + link).exitCode);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_THAT(ReadFile(path), HasSubstr("kest_up"));
}

TEST_F(Metrics, AreWhatRulesAndDashboardAskFor) {
  const std::string directory = KEST_CTL_MONITORING;
  const Ran rules =
      Shell("cd " + directory +
            " && promtool check rules kest-alerts.yml && promtool test rules kest-alerts-test.yml");
  EXPECT_EQ(0, rules.exitCode) << rules.output;
  EXPECT_TRUE(nlohmann::json::accept(ReadFile(directory + "/kest-dashboard.json")));
  const std::string names = ReadFile(directory + "/../../ctl/render/metrics.cpp");
  const std::string asked =
      ReadFile(directory + "/kest-alerts.yml") + ReadFile(directory + "/kest-dashboard.json");
  const std::regex name("\\bkest_[a-z_]+");
  for (std::sregex_iterator match(asked.begin(), asked.end(), name), end; match != end; ++match)
    EXPECT_THAT(names, HasSubstr("\"" + match->str() + "\"")) << match->str();
}

class Report : public CtlTest {
 protected:
  // Takes the archive apart; its manifest.
  static nlohmann::json Unpack(const std::string &path) {
    const Ran tar = Shell("cd " + Path("") + " && rm -rf kest-report && tar -xzf " + path);
    EXPECT_EQ(0, tar.exitCode) << tar.output;
    return nlohmann::json::parse(ReadFile(Path("kest-report/manifest.json")));
  }
  static std::string File(const std::string &name) { return ReadFile(Path("kest-report/" + name)); }
  static void ExpectNothingIsOn() {
    EXPECT_THAT(Ctl("send kest_debug_filter_io=print_watch_list").out,
                testing::AllOf(HasSubstr("bIoDebug=0"), Not(HasSubstr(" pf:0x"))));
    EXPECT_EQ("none", CtlJson("level")["data"]["level"]);
  }
};

TEST_F(Report, HoldsWhatIsAskedFirst) {
  const PlayerProcess &player = StartPlayer();
  const std::string path = Path("bug.tar.gz");
  const nlohmann::json document = CtlJson("report -o " + path);
  EXPECT_TRUE(document["ok"]);
  EXPECT_THAT(document["data"]["missing"], IsEmpty()) << document["data"]["missing"];
  const nlohmann::json manifest = Unpack(path);
  EXPECT_EQ(document["data"]["files"], manifest["files"]);
  EXPECT_THAT(manifest["does_not_hold"], HasSubstr("audio"));
  EXPECT_FALSE(fs::exists(Path("kest-report/audio")));
  for (const auto &file : manifest["files"])
    EXPECT_EQ(file["bytes"], File(file["name"]).size()) << file["name"];
  EXPECT_EQ(CtlJson("ls pipelines")["data"]["pipelines"].size(),
            nlohmann::json::parse(File("list.json"))["pipelines"].size());
  EXPECT_EQ(player.Pid(), nlohmann::json::parse(File("process.json"))["processes"][0]["pid"]);
  EXPECT_NE(File("status.txt"), File("later/status.txt"));
  EXPECT_THAT(File("versions.txt"), HasSubstr("library 20"));
  EXPECT_THAT(File("log.txt"), HasSubstr("kest_debug_node=print"));
  EXPECT_THAT(File("trace/0.txt"), HasSubstr("[p:SpeakerOutput,"));
  EXPECT_THAT(File("trace/1.txt"), HasSubstr("[f:Volume,"));
  EXPECT_EQ(fs::perms(0600), fs::status(path).permissions());
  ExpectNothingIsOn();
}

TEST_F(Report, HoldsTheSoundOfAFilterWhenAsked) {
  StartPlayer();
  const std::string path = Path("bug.tar.gz");
  EXPECT_EQ(0, Ctl("report --audio Dec/Vol -o " + path).exitCode);
  const nlohmann::json manifest = Unpack(path);
  EXPECT_THAT(manifest["missing"], IsEmpty());
  EXPECT_EQ("the process's arguments and environment", manifest["does_not_hold"]);
  for (const std::string port : {"in0", "out0"})
    EXPECT_EQ(48000u, ReadAudio(Path("kest-report/audio/Decoder_13_Volume_" + port + "_dmx.wav")).Frames());
  EXPECT_TRUE(FilesOf("Dump").empty() && IsQuiet("Dump"));
  ExpectAnswers({{"report --audio Dec/Loud -o " + path, 6, "it has Lpcm, Volume"}});
}

TEST_F(Report, OfAProcessThatDoesNotAnswerSaysWhy) {
  PlayerProcess &player = StartPlayer();
  player.Signal(SIGSTOP);
  const std::string path = Path("bug.tar.gz");
  const nlohmann::json document = CtlJson("--timeout 200 report --audio Mixer -o " + path);
  EXPECT_TRUE(document["ok"]);
  EXPECT_THAT(document["data"]["missing"], Not(IsEmpty()));
  Unpack(path);
  EXPECT_THAT(File("doctor.txt"), HasSubstr("is stopped"));
  EXPECT_THAT(File("process/status.txt"), HasSubstr("(stopped)"));
  player.Signal(SIGCONT);
  EXPECT_EQ(2, Ctl("report").exitCode);
  EXPECT_EQ(3, Ctl("report -o " + Path("missing") + "/bug.tar.gz").exitCode);
}

TEST_F(Report, AnInterruptAtAnyMomentLeavesNothingOn) {
  StartPlayer();
  const std::string path = Path("bug.tar.gz");
  for (const char *seconds : {"0.02", "0.1", "0.2", "0.7", "1.2", "1.7"}) {
    const int exitCode =
        Ctl("report --audio Mixer -o " + path, std::string("timeout --preserve-status -s INT ") + seconds)
            .exitCode;
    EXPECT_THAT(exitCode, testing::AnyOf(130, 0));
    EXPECT_EQ(exitCode == 0, fs::remove(path));
    ExpectNothingIsOn();
    EXPECT_TRUE(IsQuiet("Dump")) << seconds;
  }
}

TEST_F(Report, LeavesTheTraceOfAnotherAlone) {
  StartPlayer();
  Ctl("send kest_debug_filter_io=Dec,mine kest_debug_filter_io=restart");
  const nlohmann::json document = CtlJson("report -o " + Path("bug.tar.gz"));
  ASSERT_EQ(2u, document["data"]["missing"].size());
  EXPECT_THAT(document["data"]["missing"][0]["reason"], HasSubstr("traced already: idx:0"));
  EXPECT_THAT(Ctl("send kest_debug_filter_io=print_watch_list").out, HasSubstr("bIoDebug=1"));
}

}  // namespace
}  // namespace kest::test
