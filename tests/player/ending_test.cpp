// SPDX-License-Identifier: Apache-2.0
// How a run ends before its inputs do, beside others on the same command pipe.
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

#include "tests/player/player_test.h"

namespace kest::test {
namespace {

using PlayerEnding = PlayerTest;

TEST_F(PlayerEnding, ASignalEndsARealTimeRunWithAReadableFile) {
  const AudioData recording = ReadAudio(kRecording);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    std::filesystem::remove(out_);
    PlayerProcess player({kRecording, "-o", out_, "--loop"});
    ASSERT_TRUE(PlayOn(player, 10000)) << player.Wait().err;
    player.Signal(signal);
    const PlayerResult result = player.Wait();
    EXPECT_EQ(0, result.exitCode) << result.err;
    const AudioData output = ReadAudio(out_);
    EXPECT_THAT(result.out, StartsWith("played " + std::to_string(output.Frames()) + " frames"));
    ASSERT_GT(output.Frames(), 4000u);
    EXPECT_TRUE(Looped(recording.samples, output.samples.size()) == output.samples);
  }
}

TEST_F(PlayerEnding, ComesNeitherFromAHangUpUnderNohupNorFromAWriteThatFails) {
  PlayerProcess player({kRecording, "-o", out_, "--loop"}, "trap '' HUP; umask 027; exec <&- >&- 2>&-");
  ASSERT_TRUE(PlayOn(player, 5000));
  for (const int signal : {SIGHUP, SIGPIPE, SIGXFSZ}) {
    player.Signal(signal);
    ASSERT_TRUE(PlayOn(player, 5000)) << signal;
  }
  for (const char *fd : {"0", "1", "2"}) {
    const std::string link = "/proc/" + std::to_string(player.Pid()) + "/fd/" + fd;
    EXPECT_EQ("/dev/null", std::filesystem::read_symlink(link)) << "closed at the start: " << fd;
  }
  EXPECT_EQ(std::filesystem::perms{0640}, std::filesystem::status(out_).permissions());
  player.Signal(SIGTERM);
  EXPECT_EQ(0, player.Wait().exitCode);
}

TEST_F(PlayerEnding, ComesAlsoWhenAnotherReaderTakesItsLines) {
  PlayerProcess player({kRecording, "-o", out_, "--loop"});
  ASSERT_TRUE(WaitWhilePlaying(player, [this] { return OutputSize() > 0 && access(kPipe, F_OK) == 0; }));
  const int otherReader = open(kPipe, O_RDONLY | O_NONBLOCK);
  ASSERT_GE(otherReader, 0);
  player.Signal(SIGINT);
  for (int linesTaken = 0; linesTaken < 3 && player.IsRunning();) {
    char line = 0;
    if (read(otherReader, &line, 1) == 1) ++linesTaken;
  }
  EXPECT_EQ(0, player.Wait().exitCode);
  close(otherReader);
}

}  // namespace
}  // namespace kest::test
