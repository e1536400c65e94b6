// SPDX-License-Identifier: Apache-2.0
// Each command on a playing player.
#include <csignal>
#include <cstdlib>
#include <thread>

#include "tests/ctl/ctl_test.h"
#include "tests/ctl/terminal_process.h"

namespace kest::test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

class Commands : public CtlTest {};

// The values of a filter by the status report.
nlohmann::json ValuesOf(const std::string &filter) {
  return CtlJson("status " + filter)["data"]["filters"][0]["values"];
}

// A kestctl that follows the log beside the test.
class Follower {
 public:
  explicit Follower(const std::string &options) {
    // A shell beside it looks at it and interrupts it when it is told to.
    const std::string command = "log -f " + options + " >" + path_ + " & follower=$!; while [ ! -e " + path_ +
                                ".end ]; do sleep 0.05; done; sed -n 's/^rchar: //p' /proc/$follower/io; "
                                "kill -INT $follower; wait $follower; true";
    thread_ = std::thread([this, command] { bytesRead_ = Ctl(command).out; });
  }
  ~Follower() {
    if (thread_.joinable()) End();
  }
  Follower(const Follower &) = delete;
  Follower &operator=(const Follower &) = delete;

  // Sends the line until the follower shows the answer.
  [[nodiscard]] bool Follows(const std::string &line, const std::string &answer) const {
    return WaitFor([&] {
      Ctl("send " + line);
      return ReadFile(path_).find(answer) != std::string::npos;
    });
  }
  // How many bytes it has read, of all files.
  uint64_t End() {
    WriteFile(path_ + ".end", "");
    thread_.join();
    return std::strtoull(bytesRead_.c_str(), nullptr, 10);
  }

 private:
  const std::string path_ = PlayerTest::Path("followed");
  std::string bytesRead_;
  std::thread thread_;
};

TEST_F(Commands, PsNamesTheProcessThatReadsThePipe) {
  const PlayerProcess &player = StartPlayer();
  const auto processes = CtlJson("ps")["data"]["processes"];
  ASSERT_EQ(1u, processes.size());
  EXPECT_EQ(player.Pid(), processes[0]["pid"]);
  EXPECT_EQ("kest-player", processes[0]["name"]);
}

TEST_F(Commands, LsShowsPipelinesFiltersPortsAndParameters) {
  StartPlayer();
  const auto data = CtlJson("ls")["data"];
  ASSERT_EQ(2u, data["pipelines"].size());
  const auto &decoder = data["pipelines"][1];
  EXPECT_EQ("Decoder_13", decoder["name"]);
  EXPECT_EQ(nlohmann::json({"SpeakerOutput"}), decoder["feeds"]);
  EXPECT_EQ("Volume", decoder["filters"][1]["name"]);
  EXPECT_EQ("RUN", decoder["filters"][1]["state"]);
  EXPECT_EQ(256, decoder["filters"][1]["ports"][1]["pcm"]["ring"]);
  EXPECT_EQ("Volume", CtlJson("ls parameters")["data"]["parameters"][8]["filter"]);
  for (const char *view : {"", "pipelines", "filters", "ports"})
    EXPECT_THAT(Ctl(std::string("ls ") + view).out, HasSubstr("Decoder_13")) << view;
}

TEST_F(Commands, SetChangesAParameterNamedInShort) {
  StartPlayer();
  int gain = 0;
  for (const std::string name : {"Dec/Vol", "Volume", "V"}) {
    const std::string value = std::to_string(--gain);
    const CtlResult set = Ctl("set " + name + " Gain " + value);
    EXPECT_EQ(0, set.exitCode) << set.err;
    EXPECT_EQ("Gain of Decoder_13/Volume is set to " + value + "\n", set.out);
    EXPECT_EQ(gain, ValuesOf("Dec/Vol")["Gain"]);
  }
}

TEST_F(Commands, GetReadsTheParametersBack) {
  StartPlayer();
  Ctl("set Dec/Vol Gain -6");
  const auto gain = CtlJson("get Dec/Vol")["data"]["parameters"][0];
  EXPECT_EQ(nlohmann::json({{"pipeline", "Decoder_13"},
                            {"filter", "Volume"},
                            {"name", "Gain"},
                            {"value", -6},
                            {"unit", "dB"},
                            {"least", -144},
                            {"most", 53}}),
            gain);
  EXPECT_THAT(Ctl("get").out, AllOf(ContainsRegex("Lpcm +OkFrmCnt +[0-9]+ +read only\n"),
                                    ContainsRegex("Delay +DelayTime +0 +ms +0 to 1000\n")));
  EXPECT_EQ("no filter reads its parameters back\n", Ctl("get SpeakerOutput/Mixer").out);
}

TEST_F(Commands, SetExplainsWhatItRefusesAndWhatTheProcessRefuses) {
  StartPlayer();
  ExpectAnswers({
      {"set Dec/Vol gain 1", 6, "Volume has no \"gain\"; it has Gain, Mute"},
      {"set Dec/Vol ok 1", 6, "Volume has no \"ok\""},
      {"set Decodr/Vol Gain 1", 6, "did you mean Decoder_13?"},
      {"set Dec Gain 1", 6, "Decoder_13 is a pipeline"},
      {"set Sp Gain 1", 6, "SpeakerOutput is a pipeline"},
      {"set Dec/Vol Gain loud", 2, "\"loud\" is no whole number"},
      {"set Dec/Vol Gain 99999999999", 2, "no whole number of 32 bits"},
      {"set Dec/Vol Gain", 2, "VALUE is missing"},
      {"set Dec/Lpcm OkFrmCnt 1", 1, "Fail to set parameter from filter:'Lpcm'"},
  });
  EXPECT_EQ(0, ValuesOf("Volume")["Gain"]);
}

TEST_F(Commands, RefusalsShowAtEveryLevelAndTheLevelStays) {
  StartPlayer();
  for (const char *level : {"none", "err", "sync", "hdmi", "wrn", "info", "trace", "all"}) {
    EXPECT_EQ(std::string(level) + "\n", Ctl(std::string("level ") + level).out);
    EXPECT_EQ(0, Ctl("set Dec/Vol Gain -3").exitCode) << level;
    EXPECT_EQ(1, Ctl("set Dec/Lpcm MdVol 3").exitCode) << level;
    EXPECT_EQ(0, Ctl("cmd Dec/Vol mute=on").exitCode) << level;
    EXPECT_EQ(1, Ctl("cmd Dec/Vol mute=maybe").exitCode) << level;
    EXPECT_EQ(level, CtlJson("level")["data"]["level"]);
  }
}

TEST_F(Commands, CmdShowsWhatTheFilterSays) {
  StartPlayer();
  const CtlResult state = Ctl("cmd Volume state");
  EXPECT_EQ(0, state.exitCode);
  EXPECT_THAT(state.out, HasSubstr("Decoder_13 Volume in 0: "));
  EXPECT_THAT(state.out, Not(HasSubstr("SetParameter")));
}

TEST_F(Commands, SendGivesTheReplyOfRawLinesAsItIs) {
  StartPlayer();
  const CtlResult sent = Ctl("send kest_print_current_shm kest_log_size=4000000");
  EXPECT_EQ(0, sent.exitCode);
  EXPECT_EQ("DebugLevel:0x1,0x1\nDebugPresetCmd:,\nbDebugPresetCmd:0,0\n\nLogSizeMax:4000000\n", sent.out);
  EXPECT_EQ(2, Ctl("send ''").exitCode);
  EXPECT_EQ(2, Ctl("send " + std::string(128, 'x')).exitCode);
}

TEST_F(Commands, AHalfTypedLineOfAnotherIsNoPartOfTheAnswer) {
  StartPlayer();
  WriteToPipe("half a line ");
  const auto level = CtlJson("level");
  EXPECT_EQ("none", level["data"]["level"]);
  EXPECT_EQ(1u, level["warnings"].size());
  WriteToPipe("half a line ");
  EXPECT_EQ(0, Ctl("set Dec/Vol Gain -2").exitCode);
}

TEST_F(Commands, LogShowsTheLastLinesThatAreChosen) {
  StartPlayer();
  EXPECT_EQ(0, Ctl("level info").exitCode);
  EXPECT_EQ(1, Ctl("cmd Volume nonsense").exitCode);
  const CtlResult log = Ctl("log --level err -n 1 --plain");
  EXPECT_EQ("Err! SetParameter failed(0x8)!\n", log.out);
  EXPECT_EQ(3u, CtlJson("log -n 3")["data"]["lines"].size());
  EXPECT_THAT(Ctl("log -n 100").out, Not(HasSubstr("kestctl.")));
  EXPECT_THAT(Ctl("log -n 100 --raw").out, HasSubstr("kestctl."));
  const auto line = CtlJson("log --level err -n 1")["data"]["lines"][0];
  EXPECT_EQ("_ZE_KEST_Debug_RuntimeMonitor", line["function"]);
  EXPECT_EQ("ERR", line["level"]);
}

TEST_F(Commands, LogFollowsThroughARestart) {
  StartPlayer();
  const Follower follower("-n 0");
  EXPECT_TRUE(follower.Follows("kest_log_size=4000000", "LogSizeMax:4000000"));
  Ctl("send kest_log_restart");
  EXPECT_TRUE(follower.Follows("kest_monitor_sleep_time=77", "sleep time:77 ms"));
}

TEST_F(Commands, LogReadsOnlyTheEndOfALogOf100MB) {
  constexpr uint64_t kLogBytes = 100'000'000;
  StartPlayer();
  Ctl("send kest_log_size=2000000000");
  std::filesystem::resize_file(kLogFile, kLogBytes);  // with a hole, behind which the player goes on
  for (int i = 0; i < 3; ++i)
    Ctl("ls");
  Follower follower("-n 20");
  EXPECT_TRUE(follower.Follows("kest_monitor_sleep_time=77", "sleep time:77 ms"));
  EXPECT_LT(kLogBytes, std::filesystem::file_size(kLogFile));
  EXPECT_THAT(follower.End(), testing::AllOf(testing::Gt(0u), testing::Lt(kLogBytes / 20)));
}

TEST_F(Commands, AnAnswerThatIsLateIsAnnouncedOnATerminal) {
  const PlayerProcess &player = StartPlayer();
  player.Signal(SIGSTOP);
  for (const char *silent : {" --quiet", " --json"}) {
    TerminalProcess other(KEST_CTL_COMMAND " --timeout 300" + std::string(silent) + " ls");
    EXPECT_EQ(4, other.ExitCode());
    EXPECT_THAT(other.Rest(), Not(HasSubstr("waiting"))) << silent;
  }
  TerminalProcess level(KEST_CTL_COMMAND " --timeout 60000 level");
  EXPECT_TRUE(level.Shows("waiting for an answer")) << level.Rest();
  player.Signal(SIGCONT);
  EXPECT_TRUE(level.Shows("\r\033[Knone")) << level.Rest();
  EXPECT_EQ(0, level.ExitCode());
}

TEST_F(Commands, SeveralProcessesAreListedEachAndNotChanged) {
  StartPlayer();
  StartPlayer();
  const auto pipelines = CtlJson("--timeout 20000 ls")["data"]["pipelines"];
  ASSERT_EQ(4u, pipelines.size());
  EXPECT_NE(pipelines[0]["pid"], pipelines[2]["pid"]);
  EXPECT_EQ(5, Ctl("set Dec/Vol Gain -6").exitCode);
  EXPECT_EQ(5, Ctl("send help").exitCode);
  // Either of the two may have read the last marker before the answer was complete.
  EXPECT_THAT(Ctl("--any level").exitCode, AnyOf(0, 7));
}

TEST_F(Commands, AnswersAboutTheWordsOfTheCommandLine) {
  ExpectAnswers({{"--help", 0, ""},
                 {"--version", 0, ""},
                 {"", 2, "which command?"},
                 {"stat", 2, "did you mean status?"},
                 {"ls --nonsense", 2, "is not understood"},
                 {"ls --timout 3", 2, "did you mean --timeout?"},
                 {"--timeout 0 ls", 2, "no number from 1"},
                 {"log -n 1.5", 2, "no whole number"},
                 {"ls everything", 2, ""}});
  const auto wrong = CtlJson("nonsense");
  EXPECT_EQ("usage", wrong["error"]["code"]);
  EXPECT_FALSE(wrong["ok"]);
}

}  // namespace
}  // namespace kest::test
