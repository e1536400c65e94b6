// SPDX-License-Identifier: Apache-2.0
// kestctl's prompt, typed at through a terminal.
#include <csignal>
#include <cstdlib>

#include "tests/ctl/ctl_test.h"
#include "tests/ctl/terminal_process.h"

namespace kest::test {
namespace {

using testing::HasSubstr;

constexpr const char *kShell = "env NO_COLOR=1 " KEST_CTL_COMMAND " shell";
constexpr const char *kUp = "\x10";
constexpr const char *kCtrlC = "\x03";
constexpr const char *kCtrlD = "\x04";

class Shell : public CtlTest {
 protected:
  Shell() { setenv("XDG_STATE_HOME", Path("state").c_str(), 1); }

  static std::string PromptOf(const PlayerProcess &player) {
    return "kest-player[" + std::to_string(player.Pid()) + "]> ";
  }
};

TEST_F(Shell, CompletesWhatRunsAndShowsTheReplyUnderTheLine) {
  const PlayerProcess &player = StartPlayer();
  TerminalProcess shell(kShell);
  ASSERT_TRUE(shell.Shows(PromptOf(player))) << shell.Rest();
  shell.Type("set \t");
  EXPECT_TRUE(shell.Shows("Decoder_13/     2 filters, feeds SpeakerOutput")) << shell.Rest();
  shell.Type("Dec\tV\tG\t-6\n");
  EXPECT_TRUE(shell.Shows("Gain of Decoder_13/Volume is set to -6")) << shell.Rest();
  shell.Type("set 'Decoder_13/V\tM\t1\n");
  EXPECT_TRUE(shell.Shows("Mute of Decoder_13/Volume is set to 1")) << shell.Rest();
  shell.Type("kest_log_level=info\n");
  EXPECT_TRUE(shell.Shows("Test:<INFO>")) << shell.Rest();
  shell.Type("exit\n");
  EXPECT_EQ(0, shell.ExitCode());
}

TEST_F(Shell, GoesOnWhenTheProcessIsStartedAgain) {
  PlayerProcess &player = StartPlayer();
  TerminalProcess shell(kShell);
  ASSERT_TRUE(shell.Shows(PromptOf(player))) << shell.Rest();
  player.Signal(SIGTERM);
  player.Wait();
  players_.clear();
  shell.Type("ls\n");
  EXPECT_TRUE(shell.Shows("kestctl: no process reads")) << shell.Rest();
  EXPECT_TRUE(shell.Shows("no process> ")) << shell.Rest();
  const PlayerProcess &second = StartPlayer();
  shell.Type("ls\n");
  EXPECT_TRUE(shell.Shows("Decoder_13")) << shell.Rest();
  EXPECT_TRUE(shell.Shows(PromptOf(second))) << shell.Rest();
}

TEST_F(Shell, RemembersLinesForTheNextShell) {
  {
    TerminalProcess shell(kShell);
    ASSERT_TRUE(shell.Shows("> ")) << shell.Rest();
    shell.Type("completion fish\nhelp  level\n");
    EXPECT_TRUE(shell.Shows("Show or set the log level")) << shell.Rest();
    shell.Signal(SIGKILL);
  }
  TerminalProcess next(kShell);
  ASSERT_TRUE(next.Shows("> ")) << next.Rest();
  next.Type(kUp);
  EXPECT_TRUE(next.Shows("help  level")) << next.Rest();
  next.Type(std::string(kUp) + "\n");
  EXPECT_TRUE(next.Shows("complete -c kestctl")) << next.Rest();
  next.Type(kCtrlD);
  EXPECT_EQ(0, next.ExitCode());
}

TEST_F(Shell, CtrlCEndsALineOrACommandAndSigtermTheShell) {
  const PlayerProcess &player = StartPlayer();
  TerminalProcess shell(kShell);
  ASSERT_TRUE(shell.Shows(PromptOf(player))) << shell.Rest();
  shell.Type("no such command");
  ASSERT_TRUE(shell.Shows("no such command")) << shell.Rest();
  shell.Type(kCtrlC);
  EXPECT_TRUE(shell.Shows(PromptOf(player))) << shell.Rest();
  shell.Type("log -f -n 1 --raw\n");
  ASSERT_TRUE(shell.Shows("kestctl.")) << shell.Rest();  // a marker
  shell.Type(kCtrlC);
  EXPECT_TRUE(shell.Shows("interrupted")) << shell.Rest();
  EXPECT_TRUE(shell.Shows(PromptOf(player))) << shell.Rest();
  shell.Type("level\n");
  EXPECT_TRUE(shell.Shows("none")) << shell.Rest();
  EXPECT_TRUE(shell.Shows(PromptOf(player))) << shell.Rest();
  shell.Signal(SIGTERM);
  EXPECT_EQ(130, shell.ExitCode());
}

TEST_F(Shell, RunsTheLinesOfItsInputAndTellsTheFirstFailure) {
  StartPlayer();
  const CtlResult shell = Ctl("shell", R"(printf '# a note\nset Dec/Vol Gain -3\nset Dec/Vol gain 1\n)"
                                       R"(nonsense\nshell\nset Dec/Vol "Mute" 1\nexit\nls\n' |)");
  EXPECT_EQ("Gain of Decoder_13/Volume is set to -3\nMute of Decoder_13/Volume is set to 1\n", shell.out);
  EXPECT_THAT(shell.err, HasSubstr("it has Gain, Mute"));
  EXPECT_THAT(shell.err, HasSubstr("there is no command \"nonsense\""));
  EXPECT_THAT(shell.err, HasSubstr("this is the shell"));
  EXPECT_THAT(shell.err, HasSubstr("3 of 7 lines failed"));
  EXPECT_EQ(6, shell.exitCode);
}

}  // namespace
}  // namespace kest::test
