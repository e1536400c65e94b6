// SPDX-License-Identifier: Apache-2.0
#include "debug/control/startup.h"

#include <atomic>
#include <filesystem>
#include <future>
#include <thread>

#include <unistd.h>

#include "debug/base/debug_mutex.h"
#include "debug/base/shared_settings.h"
#include "debug/base/started.h"
#include "debug/control/create_thread.h"
#include "tests/support/library_test.h"

namespace kest::test {

TEST(StartUp, TheFirstSetsTheLevelToPrintAndOpensThePipeAndASecondDoesNothing) {
  const DebugLayer layer;
  EXPECT_EQ(2000, s32KestMonitorSleepTimeMs);
  EXPECT_EQ(ZE_KEST_LEVEL_PRINT, u32KestDebugLevel);
  EXPECT_EQ(nullptr, pFileKestDebugPipeline);
  EXPECT_TRUE(WaitFor([] { return std::filesystem::is_fifo(std::filesystem::status(kPipe)); }));
  EXPECT_EQ(std::filesystem::perms::owner_all, std::filesystem::status(kPipe).permissions());
  EXPECT_TRUE(std::filesystem::exists(kLogFile));

  // A second start is reported and starts no second thread.
  EXPECT_TRUE(WaitFor([] { return ThreadsNamed("KestDebug") == 1; }));
  const ReportCapture capture;
  pFileKestDebugPipeline = stderr;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  EXPECT_EQ(nullptr, pFileKestDebugPipeline);
  EXPECT_EQ((Texts{"Exit for double init\n"}), capture.Texts("<ERR>"));
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_CreateThread(kest::kCommandThread));
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_CreateThread(77));  // no such kind
  EXPECT_EQ(1, ThreadsNamed("KestDebug"));
}

TEST(ShutDown, EndsTheThreadAndRemovesTheSharedBlockUntilTheNextStartAndASecondOneIsOnlyReported) {
  for (int i = 0; i < 3; ++i) {
    {
      const DebugLayer layer;
      EXPECT_TRUE(std::filesystem::exists(KEST_DEBUG_DIR "shm_global"));
      PresetText szText;
      EXPECT_FALSE(CopyPresetCommand(szText));
      Command("kest_debug_preset_cmd=all,x");
      Command("kest_log_level=info");
      EXPECT_EQ(ZE_KEST_LEVEL_INFO, u32KestDebugLevel);
    }
    EXPECT_EQ(0, ThreadsNamed("KestDebug"));
    EXPECT_FALSE(std::filesystem::exists(KEST_DEBUG_DIR "shm_global"));
  }
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_DeInit());
  EXPECT_EQ((Texts{"DeInit\n", "Exit for double DeInit\n"}), capture.Texts("<INFO>"));
}

TEST(ShutDown, WaitsForTheNextLineOfThePipeAndClosesTheLogThatTheLineOpens) {
  { const DebugLayer before; }
  const ReportCapture capture;
  const auto descriptors = OpenDescriptors();
  ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  WriteToPipe("");
  std::atomic<bool> bDone{false};
  std::thread ender([&bDone] {
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_DeInit());
    bDone = true;
  });
  EXPECT_TRUE(WaitFor([] { return IsEnding(); }));
  usleep(700000);  // in which it looks at the pipe's path
  EXPECT_FALSE(bDone);
  WriteToPipe("kest_log_to_file=on\n");
  ender.join();
  EXPECT_TRUE(capture.Has("<PRINT>", "kest_log_to_file=on\n"));
  EXPECT_EQ(descriptors, OpenDescriptors());
  EXPECT_FALSE(IsEnding());
}

TEST(StartUp, ALaterProcessAdoptsTheLevelAndThePresetCommand) {
  EmptyDebugDirectory();
  EXPECT_EQ(0, InAnotherProcess([] {
              EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
              Command("kest_log_level=wrn");
              Command("kest_debug_preset_cmd=all,a=b,c=d");
            }));
  ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  EXPECT_EQ(ZE_KEST_LEVEL_WRN, u32KestDebugLevel);
  const ReportCapture capture;
  Command("kest_print_current_shm");
  EXPECT_TRUE(capture.Has("<PRINT>", "DebugPresetCmd:a=b,c=d,a=b,c=d\n"));
  EXPECT_TRUE(capture.Has("<PRINT>", "bDebugPresetCmd:1,1\n"));
  ShutDown();
}

TEST(StartUp, OwnAndSharedSettingsAreShownSideBySide) {
  const DebugLayer layer;
  Command("kest_log_level=wrn");
  EXPECT_EQ(0, InAnotherProcess([] {
              Command("kest_log_level=info");
              Command("kest_debug_preset_cmd=all,b");
            }));
  const ReportCapture capture(ZE_KEST_LEVEL_WRN);
  Command("kest_print_current_shm");
  EXPECT_THAT(
      capture.Texts("<PRINT>"),
      testing::IsSupersetOf({"DebugLevel:0x30,0x40\n", "DebugPresetCmd:,b\n", "bDebugPresetCmd:0,1\n"}));
}

TEST(StartUp, TheFirstLogLineOfAnyThreadSetsTheBaseUpOnce) {
  EmptyDebugDirectory();
  InThreads(8, [](int) {
    ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "x\n");
    EXPECT_EQ(ZE_KEST_LEVEL_PRINT, __atomic_load_n(&u32KestDebugLevel, __ATOMIC_RELAXED));
  });
  EXPECT_TRUE(std::filesystem::exists(KEST_DEBUG_DIR "shm_global"));
  EXPECT_FALSE(std::filesystem::exists(kLogFile));
}

TEST(StartUp, TheThreadsOwnReportsReachTheLogFileButThoseOfItsCreationComeTooEarly) {
  for (int i = 0; i < 20; ++i) {
    EmptyDebugDirectory();
    WriteFile(KEST_DEBUG_DIR "shm_global", {static_cast<char>(ZE_KEST_LEVEL_ENTER), '\0', '\0', '\0'});
    const ReportCapture capture;
    ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
    WriteToPipe("");
    EXPECT_TRUE(capture.Has("<WRN>", "pthread_attr_setschedparam(&_stKestDebugRuntimeMonitorThreadAttr"));
    ASSERT_EQ(ZE_KEST_OK, ShutDown());
    const std::string log = ReadFile(kLogFile);
    EXPECT_THAT(log, AllOf(Not(HasSubstr("_ZE_KEST_Debug_CreateThread")), Not(HasSubstr(": End\n"))));
    EXPECT_EQ(1, capture.Count("<PRINT>", "Log to file(1)\n"));
    EXPECT_THAT(log, ContainsRegex("_ZE_KEST_Debug_RuntimeMonitor.*: Start\n"));
  }
}

TEST(StartUp, CommandsOfOtherThreadsGoOnThroughShutDownsAndStarts) {
  EmptyDebugDirectory();
  const ReportCapture capture;  // keeps the reports from the terminal
  std::atomic<bool> bDone{false};
  std::vector<std::thread> threads;
  for (const char *pszLine :
       {"kest_log_level=all", "kest_debug_preset_cmd=all,x", "kest_print_current_shm", "kest_log_restart",
        "kest_debug_watch=create_test", "kest_debug_watch_tid=1", "kest_debug_watch_current_tids=off"}) {
    threads.emplace_back([&bDone, pszLine] {
      while (!bDone)
        ze_kest_Debug_SetParameter(pszLine);
    });
  }
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
    EXPECT_EQ(ZE_KEST_OK, ShutDown());
  }
  bDone = true;
  for (std::thread &thread : threads)
    thread.join();
}

TEST(DebugMutex, AnUnlockByAnotherThreadLeavesTheLockWithItsHolder) {
  const DebugLayer layer;
  _ZE_KEST_Debug_Mutex_Lock();
  std::thread(_ZE_KEST_Debug_Mutex_Unlock).join();
  EXPECT_EQ(EBUSY, pthread_mutex_trylock(&_stKestDebugMutex));
  _ZE_KEST_Debug_Mutex_Unlock();
  EXPECT_EQ(0, pthread_mutex_trylock(&_stKestDebugMutex));
  EXPECT_EQ(0, pthread_mutex_unlock(&_stKestDebugMutex));
}

namespace {

// Unchecked: one is held through some rounds of a loop only, another is not held at all.
KEST_UNCHECKED_LOCKS void Lock() {
  _ZE_KEST_Debug_Mutex_Lock();
}
KEST_UNCHECKED_LOCKS void Unlock() {
  _ZE_KEST_Debug_Mutex_Unlock();
}

}  // namespace

TEST(DebugMutex, AForkReleasesWhatItTookAndLeavesTheRestWithItsThreadUntilTheShutDown) {
  const DebugLayer layer;
  const auto expectHeld = [](bool bHeld) {
    EXPECT_EQ(bHeld ? EBUSY : 0, pthread_mutex_trylock(&_stKestDebugMutex));
    if (!bHeld) pthread_mutex_unlock(&_stKestDebugMutex);
  };
  for (const bool bHeld : {false, true}) {
    if (bHeld) Lock();
    EXPECT_EQ(0, InAnotherProcess([&] { expectHeld(bHeld); }));
    expectHeld(bHeld);
    if (bHeld) continue;
    std::promise<void> end;
    std::atomic<bool> bLocked{false};
    std::thread other([&] {
      Lock();
      bLocked = true;
      end.get_future().wait();
      Unlock();
    });
    EXPECT_TRUE(WaitFor([&bLocked] { return bLocked.load(); }));
    Unlock();  // the fork has left nothing to this thread
    expectHeld(true);
    end.set_value();
    other.join();
  }
  EXPECT_EQ(ZE_KEST_OK, ShutDown());
  expectHeld(false);
}

}  // namespace kest::test
