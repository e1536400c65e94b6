// SPDX-License-Identifier: Apache-2.0
// Every document that kestctl prints agrees with the published schema.
#include <csignal>
#include <thread>

#include <sys/stat.h>

#include "tests/ctl/ctl_test.h"

namespace kest::test {
namespace {

class Schema : public CtlTest {
 protected:
  // Runs kestctl and keeps its document.
  void Keep(const std::string &arguments, int exitCode, int timeoutMs = 10000) {
    const CtlResult result = Ctl("--json --timeout " + std::to_string(timeoutMs) + " " + arguments);
    EXPECT_EQ(exitCode, result.exitCode) << arguments << ": " << result.out << result.err;
    KeepText(result.out);
  }
  void KeepText(const std::string &text) {
    const std::string path = Path("document" + std::to_string(kept_++) + ".json");
    WriteFile(path, text);
    instances_ += " -i " + path;
  }
  // What the validator finds wrong with all that was kept; empty when nothing.
  [[nodiscard]] std::string Complaints() const {
    const std::string output = Path("complaints");
    const std::string command =
        "/usr/bin/python3 -W ignore -m jsonschema" + instances_ + " " KEST_CTL_SCHEMA " >" + output + " 2>&1";
    const int status = std::system(command.c_str());
    return status == 0 ? "" : "the validator: " + ReadFile(output);
  }

  int kept_ = 0;
  std::string instances_;
};

TEST_F(Schema, HoldsForEveryCommandOnAPlayingPlayer) {
  StartPlayer();
  for (const char *arguments : {"ps", "doctor", "ls", "ls ports", "ls parameters", "status", "status Dec/Vol",
                                "get", "level", "level info", "set Dec/Vol Gain -6", "cmd Dec/Vol state",
                                "send help", "log -n 200", "help set", "completion bash"}) {
    Keep(arguments, 0);
  }
  Keep("dump Mixer --seconds 0.1 -o " + Path("dump"), 0);
  Keep("latency Mixer Delay --yes", 0);
  Keep(std::string("check ") + kRecording + " --reference " + kRecording, 0);
  Keep(std::string("plot levels ") + kRecording + " -o " + Path("levels.png"), 0);
  WriteAudio(Path("silent.wav"), {2, 48000, kWav16, Samples(96000, 0)});
  Keep("check " + Path("silent.wav"), 1);
  Keep("metrics", 0);
  Keep("metrics --device tv -o " + Path("kest.prom"), 0);
  Keep("report -o " + Path("bug.tar.gz"), 0);
  Keep("set Dec/Lpcm MdVol 3", 1);
  Keep("cmd Dec/Vol mute=maybe", 1);
  Keep("set Dec/Vol gain 3", 6);
  Keep("set Dec/Vol", 2);
  Keep("nonsense", 2);
  EXPECT_EQ("", Complaints());
}

TEST_F(Schema, HoldsForEveryLineOfAFollowedLog) {
  StartPlayer();
  Ctl("level all");
  Ctl("send no_such_command");
  const CtlResult followed = Ctl("--json log -f --raw -n 20", "timeout --signal=INT 0.5");
  std::istringstream lines(followed.out);
  for (std::string line; std::getline(lines, line);)
    KeepText(line);
  EXPECT_LE(20, kept_);
  EXPECT_EQ("", Complaints());
}

TEST_F(Schema, HoldsForWhatIsShownLiveAndRecorded) {
  const PlayerProcess &player = StartPlayer();
  Keep("perf Dec --seconds 0.3", 0);
  Keep("trace Dec Sp --seconds 0.3 -o " + Path("trace.json"), 0);
  player.Signal(SIGSTOP);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  player.Signal(SIGCONT);
  for (const char *words : {"--json top -n 2 -d 0.2", "--json watch --seconds 0.3 --every 0.1"}) {
    const CtlResult result = Ctl(words);
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);)
      KeepText(line);
  }
  EXPECT_LE(6, kept_);
  EXPECT_EQ("", Complaints());
}

TEST_F(Schema, HoldsWhenSomethingIsWrong) {
  Keep("level", 3);
  Keep("ps", 3);
  Keep("doctor", 1);
  PlayerProcess &player = StartPlayer();
  player.Signal(SIGSTOP);
  constexpr int kNobodyAnswersMs = 300;
  Keep("level", 4, kNobodyAnswersMs);
  Keep("doctor", 1, kNobodyAnswersMs);
  player.Signal(SIGCONT);
  StartPlayer();
  Keep("set Dec/Vol Gain -6", 5);
  Keep("ls", 0);
  Keep("ps", 0);
  EXPECT_EQ("", Complaints());
}

TEST_F(Schema, RefusesWhatItDoesNotDescribe) {
  StartPlayer();
  nlohmann::json ls = CtlJson("ls");
  ls["data"]["pipelines"][0]["colour"] = "blue";
  KeepText(ls.dump());
  EXPECT_NE("", Complaints());
}

}  // namespace
}  // namespace kest::test
