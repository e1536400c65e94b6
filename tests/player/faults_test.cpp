// SPDX-License-Identifier: Apache-2.0
// A device that fails under a running player: the sound is whole and the player ends.
#include <algorithm>

#include <sys/resource.h>
#include <unistd.h>

#include "tests/player/player_test.h"
#include "tests/support/disk.h"

namespace kest::test {
namespace {

namespace fs = std::filesystem;

// The descriptors that a process holds all the time: a dump opens further ones for a moment.
rlim_t HeldDescriptors(pid_t pid) {
  rlim_t held = RLIM_INFINITY;
  for (int i = 0; i < 20; ++i) {
    const fs::directory_iterator open("/proc/" + std::to_string(pid) + "/fd");
    held = std::min(held, static_cast<rlim_t>(std::distance(begin(open), end(open))));
    usleep(1000);
  }
  return held;
}

class PlayerFaults : public PlayerTest {
 protected:
  PlayerFaults() { WriteAudio(Path("in.wav"), input_); }

  // Plays in real time with log and dumps on; the fault comes in the middle.
  void PlayThrough(const std::function<void(const PlayerProcess &)> &fault) {
    fs::remove(out_);
    PlayerProcess player({Path("in.wav"), "-o", out_});
    ASSERT_TRUE(PlayOn(player, 10000)) << player.Wait().err;
    if (fs::is_fifo(kPipe)) WriteToPipe("kest_log_level=all\nkest_print_filter_info=on\nkest_dump_io=on\n");
    ASSERT_TRUE(PlayOn(player, 20000));
    fault(player);
    const PlayerResult result = player.Wait();
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_TRUE(input_.samples == ReadAudio(out_).samples);
    said_ = result.err;
  }

  std::string said_;  // on stderr, by the last run
  const AudioData input_ = Noise(2, kWav16, 48000);
};

TEST_F(PlayerFaults, FilesThatVanishOrAreReplacedUnderAPlayerLeaveItsSoundAlone) {
  const std::function<void(const PlayerProcess &)> faults[] = {
      [](const PlayerProcess &) { fs::remove(kPipe); },
      [](const PlayerProcess &) {
        fs::remove(kPipe);
        WriteFile(kPipe, "kest_dump_io=off\n");
      },
      [](const PlayerProcess &) {
        fs::remove(kLogFile);
        fs::create_directory(kLogFile);
        WriteToPipe("kest_log_restart\n");
      },
      [](const PlayerProcess &) {
        fs::resize_file(KEST_DEBUG_DIR "shm_global", 0);
        WriteToPipe("kest_print_current_shm\nkest_log_level=all\n");
      },
      // Again when the player puts a file into it meanwhile.
      [](const PlayerProcess &) {
        for (std::error_code ignored; fs::exists(KEST_DEBUG_DIR);)
          fs::remove_all(KEST_DEBUG_DIR, ignored);
      }};
  for (const auto &fault : faults) {
    EmptyDebugDirectory();
    PlayThrough(fault);
  }
}

TEST_F(PlayerFaults, ADeviceWithoutRoomLeavesTheSoundAlone) {
  if (!MayMount()) GTEST_SKIP() << "needs a mount namespace";
  const Disk disk(0, "size=2m");
  PlayThrough([](const PlayerProcess &) { Disk::Fill(); });
  PlayThrough([](const PlayerProcess &) {});  // full from the start
}

TEST_F(PlayerFaults, AProcessWithoutDescriptorsLeavesTheSoundAlone) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer needs descriptors of its own";
#endif
  PlayThrough([](const PlayerProcess &player) {
    const rlim_t held = HeldDescriptors(player.Pid());
    const struct rlimit noMore = {held, held};
    EXPECT_EQ(0, prlimit(player.Pid(), RLIMIT_NOFILE, &noMore, nullptr));
  });
}

TEST_F(PlayerFaults, WhatIsNoPipeAtTheStartOrAReadOnlyDiskLeavesTheSoundAlone) {
  const std::string typed = "kest_dump_io=on\n";
  WriteFile(kPipe, typed);
  // Waited for while it plays: its end closes the log.
  PlayThrough([](const PlayerProcess &) {
    EXPECT_TRUE(WaitFor(
        [] { return ReadFile(kLogFile).find("D is no pipe, no commands are read") != std::string::npos; }));
  });
  EXPECT_EQ(typed, ReadFile(kPipe));
  EXPECT_THAT(said_, HasSubstr(std::string(kPipe) + " is no pipe, no commands are read"));
  if (!MayMount()) GTEST_SKIP() << "needs a mount namespace";
  const std::tuple<unsigned long, const char *, const char *> disks[] = {
      {MS_RDONLY, "", "there will be no log and no command pipe"},
      {0, "nr_inodes=1", "cannot make the pipe"}};
  for (const auto &[flags, pszOptions, pszSaid] : disks) {
    const Disk disk(flags, pszOptions);
    PlayThrough([](const PlayerProcess &) {});
    EXPECT_THAT(said_, HasSubstr(pszSaid));
  }
}

}  // namespace
}  // namespace kest::test
