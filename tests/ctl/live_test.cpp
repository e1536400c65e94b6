// SPDX-License-Identifier: Apache-2.0
// What is shown live of a playing player, and that nothing stays switched on.
#include <atomic>
#include <csignal>
#include <sstream>
#include <thread>

#include <sys/ptrace.h>
#include <sys/wait.h>

#include "tests/ctl/ctl_test.h"
#include "tests/ctl/terminal_process.h"

namespace kest::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr const char *kScreen = "env TERM=xterm NO_COLOR=1 " KEST_CTL_COMMAND " top -d 0.2";

size_t PortLines() {
  const std::string log = ReadFile(kLogFile);
  size_t count = 0;
  for (size_t at = log.find("[pcm  level]"); at != std::string::npos; at = log.find("[pcm  level]", at + 1))
    ++count;
  return count;
}

// A cycle is 5 ms.
bool PortLinesAreOff() {
  return WaitFor([] {
    const size_t before = PortLines();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return PortLines() == before;
  });
}

std::vector<json> LinesOf(const CtlResult &result) {
  std::vector<json> lines;
  std::istringstream text(result.out);
  for (std::string line; std::getline(text, line);)
    lines.push_back(json::parse(line));
  return lines;
}

// Stops one thread of a child as a debugger does.
class StoppedThread {
 public:
  explicit StoppedThread(int tid) : tid_(tid) {
    EXPECT_EQ(0, ptrace(PTRACE_SEIZE, tid_, nullptr, nullptr));
    EXPECT_EQ(0, ptrace(PTRACE_INTERRUPT, tid_, nullptr, nullptr));
    EXPECT_EQ(tid_, waitpid(tid_, nullptr, __WALL));
  }
  ~StoppedThread() { ptrace(PTRACE_DETACH, tid_, nullptr, nullptr); }
  StoppedThread(const StoppedThread &) = delete;
  StoppedThread &operator=(const StoppedThread &) = delete;

 private:
  int tid_;
};

std::string MarksOf(const json &pipeline) {
  std::string marks;
  for (const json &filter : pipeline["filters"])
    marks += filter["mark"].get<std::string>() + " ";
  return marks;
}

class Live : public CtlTest {};

TEST_F(Live, TopTellsLevelsMarksAndCpuOfEveryFilter) {
  StartPlayer();
  const auto lines = LinesOf(Ctl("--json top -n 3 -d 0.2"));
  ASSERT_EQ(4u, lines.size());
  const json look = lines[2]["live"];
  EXPECT_EQ("kest-player", look["name"]);
  EXPECT_TRUE(look["cpu_percent"].is_number());
  ASSERT_EQ(2u, look["pipelines"].size());
  EXPECT_EQ("ran ran ran ", MarksOf(look["pipelines"][0]));
  const json port = look["pipelines"][0]["filters"][0]["ports"][0];
  EXPECT_EQ("in", port["side"]);
  EXPECT_LT(0, port["percent"]);
  EXPECT_TRUE(port["xruns"].is_number());
  EXPECT_TRUE(PortLinesAreOff());
  EXPECT_EQ(3, lines[3]["data"]["looks"]);
  EXPECT_EQ(2, Ctl("top -d nonsense").exitCode);
}

TEST_F(Live, TopMarksTheFilterThatDoesNotFinishAndThoseThatDoNotRun) {
  StartPlayer();
  const StoppedThread stopped(CtlJson("ls")["data"]["pipelines"][0]["tid"]);
  const json pipelines = LinesOf(Ctl("--json top -n 2 -d 0.4"))[1]["live"]["pipelines"];
  const std::string marks = MarksOf(pipelines[0]);
  EXPECT_THAT(marks, HasSubstr("did_not_finish"));  // in which of the three it was stopped is chance
  EXPECT_THAT(marks, HasSubstr("not_run"));
  EXPECT_THAT(marks, testing::Not(HasSubstr("ran")));
  EXPECT_EQ("not_run not_run ", MarksOf(pipelines[1]));  // waits for room
}

TEST_F(Live, TopUsesTheWholeTerminalAndGivesItBack) {
  const PlayerProcess &player = StartPlayer();
  const char *const kGivenBack = "\033[?1049l";
  {
    TerminalProcess top(kScreen);
    EXPECT_TRUE(top.Shows("kest-player (" + std::to_string(player.Pid()) + ")")) << top.Rest();
    EXPECT_TRUE(top.Shows("Mixer")) << top.Rest();
    player.Signal(SIGSTOP);
    EXPECT_TRUE(top.Shows("does not read its commands")) << top.Rest();
    player.Signal(SIGCONT);
    top.Type("q");
    EXPECT_TRUE(top.Shows(kGivenBack)) << top.Rest();
    EXPECT_EQ(0, top.ExitCode());
  }
  TerminalProcess top(kScreen);
  EXPECT_TRUE(top.Shows("Mixer")) << top.Rest();
  top.Type("\x03");
  EXPECT_TRUE(top.Shows(kGivenBack)) << top.Rest();
  EXPECT_EQ(130, top.ExitCode());
  EXPECT_TRUE(PortLinesAreOff());
}

TEST_F(Live, WatchTellsAnUnderrunWithItsNeighboursAndWhoTookLong) {
  const PlayerProcess &player = StartPlayer();
  CtlResult result;
  std::atomic<bool> isOver = false;
  std::thread watching([&] {
    result = Ctl("--json watch --fail");
    isOver = true;
  });
  while (!isOver) {
    for (const int signal : {SIGSTOP, SIGCONT}) {
      player.Signal(signal);
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
  }
  watching.join();
  EXPECT_EQ(1, result.exitCode) << result.err;
  const auto lines = LinesOf(result);
  ASSERT_EQ(2u, lines.size());
  const json xrun = lines[0]["xrun"];
  EXPECT_EQ("underrun", xrun["event"]);
  EXPECT_EQ("SpeakerOutput", xrun["pipeline"]);
  EXPECT_FALSE(xrun["before"].empty());
  EXPECT_LT(0, xrun["blame"]["turn_us"]);
  EXPECT_EQ("refused", lines[1]["error"]["code"]);
  EXPECT_TRUE(PortLinesAreOff());
}

TEST_F(Live, WatchGoesOnWhenAnotherSwitchesThePortLinesOff) {
  StartPlayer();
  std::thread watching([] { Ctl("watch --seconds 3"); });
  EXPECT_TRUE(WaitFor([] { return PortLines() > 20; }));
  Ctl("send kest_print_filter_info=off");
  const size_t before = PortLines();
  EXPECT_TRUE(WaitFor([&] { return PortLines() > before + 20; }));
  watching.join();
  EXPECT_TRUE(PortLinesAreOff());
  EXPECT_EQ(0, Ctl("watch --seconds 0.3 --every 0.1").exitCode);
}

TEST_F(Live, PerfMeasuresWithCountersAndSaysPlainlyWhenThereAreNone) {
  StartPlayer();
  const json bare = CtlJson("perf Dec --seconds 0.5");
  EXPECT_EQ(0, bare["exit"]);
  EXPECT_TRUE(bare["data"]["rows"][0]["cpu_percent"].is_number());
  if (!bare["data"]["counters"].get<bool>()) {
    EXPECT_THAT(bare["warnings"].dump(), HasSubstr("hardware counters"));
    EXPECT_THAT(Ctl("perf Dec/Vol --seconds 0.5").err, HasSubstr("hardware counters"));
  }
  players_.clear();
  StartPlayer({}, "export LD_PRELOAD=" KEST_SOFTWARE_COUNTERS " ASAN_OPTIONS=verify_asan_link_order=0");
  const json rows = CtlJson("perf Dec --seconds 1.5")["data"]["rows"];
  ASSERT_EQ(3u, rows.size());
  EXPECT_EQ("Volume", rows[2]["filter"]);
  for (const json &row : rows) {
    EXPECT_LE(50, row["cycles"]) << row;
    EXPECT_LT(0.0, row["mips"]) << row;
  }
  EXPECT_THAT(Ctl("perf Dec/Vol --seconds 1 --csv").out,
              HasSubstr("pipeline,filter,cycles,mips,mcps,cpu_percent\nDecoder_13,Volume,"));
}

TEST_F(Live, CtrlCLeavesNothingSwitchedOn) {
  StartPlayer();
  for (const char *words : {"watch", "top -b -d 0.2", "perf Dec --seconds 60", "watch --every 0.2"}) {
    EXPECT_EQ(130, Ctl(words, "timeout --preserve-status --signal=INT 0.7").exitCode) << words;
    EXPECT_TRUE(PortLinesAreOff()) << words;
  }
}

}  // namespace
}  // namespace kest::test
