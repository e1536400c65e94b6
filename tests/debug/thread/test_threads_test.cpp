// SPDX-License-Identifier: Apache-2.0
#include "debug/thread/test_threads.h"

#include <algorithm>
#include <ctime>
#include <future>
#include <thread>

#include <unistd.h>

#include "debug/control/create_thread.h"
#include "debug/thread/signal_test.h"
#include "debug/thread/thread_commands.h"
#include "debug/thread/tid_test.h"
#include "tests/support/fake_counters.h"
#include "tests/support/library_test.h"

namespace kest::test {
namespace {

constexpr const char *kCreateTidTest = "kest_debug_watch=create_test";
constexpr const char *kCreateSignalTest = "kest_pthread_signal=create_test";

bool MayRunRoundRobin() {
  return std::async(std::launch::async,
                    [] {
                      const sched_param stSched = {40};
                      return pthread_setschedparam(pthread_self(), SCHED_RR, &stSched) == 0;
                    })
      .get();
}

// A test thread, started by its command. Where the process has no right to run it round robin its body runs
// on a plain thread instead. It is ended with this object, or with the debug layer before.
class TestThread {
 public:
  TestThread(const char *pszCommand, DebugThread &thread) {
    if (MayRunRoundRobin()) {
      Command(pszCommand);
      return;
    }
    Store(thread.bRunning, uint8_t{1});
    Command(pszCommand);  // it counts as running, so this does nothing
    plain_ = std::thread(thread.pfnBody, nullptr);
  }
  ~TestThread() {
    EndTestThreads();
    if (plain_.joinable()) plain_.join();
  }

 private:
  std::thread plain_;
};

int64_t TidTestLines(const ReportCapture &capture) {
  const Texts prints = capture.Texts("<PRINT>");
  return std::count_if(prints.begin(), prints.end(),
                       [](const std::string &text) { return text.rfind("[TidTest]", 0) == 0; });
}

void WaitForCount(const ReportCapture &capture, const std::string &text, int64_t s64Count) {
  EXPECT_TRUE(WaitFor([&] { return capture.Count("<PRINT>", text) >= s64Count; })) << text;
}

}  // namespace

TEST(TestThreads, AreCreatedOnceWhereTheProcessMayRunThemAndReportedElsewhere) {
  const DebugLayer layer;
  const ReportCapture capture;
  const bool bMay = MayRunRoundRobin();
  for (const unsigned int u32Kind : {kTidTestThread, kSignalTestThread}) {
    for (int i = 0; i < 2; ++i)
      EXPECT_EQ(bMay ? ZE_KEST_OK : ZE_KEST_FAILED, _ZE_KEST_Debug_CreateThread(u32Kind));
  }
  EXPECT_EQ(bMay ? 1 : 0, ThreadsNamed("KestTidTest"));
  EXPECT_EQ(bMay ? 1 : 0, ThreadsNamed("KestSignalTest"));
  EXPECT_EQ(bMay ? 0 : 4, capture.Count("<ERR>", "Err! pthread_create failed!\n"));
}

TEST(TestThreads, EndWithTheDebugLayerAndStartAnewWithTheNext) {
  FakeCounters clock;
  clock.u64NowUs = 1000000000000000;  // so late that no wait ends by itself
  for (int i = 0; i < 3; ++i) {
    const DebugLayer layer;
    Store(s32KestDebugTidTestDelayMs, INT32_MAX);
    const ReportCapture capture;
    const TestThread tidTest(kCreateTidTest, _stKestDebugTidTest);
    const TestThread signalTest(kCreateSignalTest, _stKestDebugPthreadSignalTest);
    WaitForCount(capture, "Pthread signal: wait\n", 1);  // a "run" of the layer before is forgotten
    if (i == 1) {
      Command("kest_pthread_signal_test=run");
      WaitForCount(capture, "Pthread Signal Test: running\n", 2);
    }
    EXPECT_TRUE(WaitFor([&capture] { return TidTestLines(capture) == 1; }));
    EXPECT_EQ(ZE_KEST_OK, ShutDown());
    EXPECT_EQ(1, TidTestLines(capture));
    WaitForCount(capture, "Pthread Signal Test: end\n", 1);
    EXPECT_EQ(0, ThreadsNamed("KestTidTest") + ThreadsNamed("KestSignalTest"));
  }
}

TEST(TestThreads, AreRefusedWhileTheLayerIsDown) {
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, _ZE_KEST_Debug_CreateThread(kTidTestThread));  // nothing ever ran
  { const DebugLayer layer; }
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, _ZE_KEST_Debug_Cmd_WatchTid(kCreateTidTest));
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, _ZE_KEST_Debug_Cmd_PthreadSignal(kCreateSignalTest));
  EXPECT_EQ((Texts{"kest_debug_watch_tid=create_test\n", "echo kest_pthread_signal=create_test\n"}),
            capture.Texts("<PRINT>"));
}

TEST(TidTest, LogsAtIntervalsFromItsOwnThreadWhichCanBeWatched) {
  const DebugLayer layer;
  EXPECT_EQ(5000, s32KestDebugTidTestDelayMs);
  Store(s32KestDebugTidTestDelayMs, 1);
  const ReportCapture capture;
  const TestThread test(kCreateTidTest, _stKestDebugTidTest);
  const auto findTid = [&capture] {
    int s32Tid = 0;
    for (const std::string &text : capture.Texts("<PRINT>"))
      if (sscanf(text.c_str(), "[TidTest] tid:%d\n", &s32Tid) == 1) break;
    return s32Tid;
  };
  ASSERT_TRUE(WaitFor([&] { return findTid() != 0; }));
  EXPECT_EQ(MayRunRoundRobin() ? SCHED_RR : SCHED_OTHER, sched_getscheduler(findTid()));
  const std::string tid = std::to_string(findTid());
  const auto waitForLines = [&](int64_t s64Lines) {
    const std::string line = "[TidTest] tid:" + tid + "\n";
    WaitForCount(capture, line, capture.Count("<PRINT>", line) + s64Lines);
  };
  // Whether its next lines reach the file; a line that was under way is let pass.
  const auto reachesTheFile = [&] {
    waitForLines(2);
    const size_t sztBefore = ReadFile(kLogFile).size();
    waitForLines(3);
    return ReadFile(kLogFile).size() > sztBefore;
  };
  Command("kest_debug_watch_tid=" + tid);
  EXPECT_TRUE(reachesTheFile());
  Command("kest_debug_watch_tid=1");
  EXPECT_FALSE(reachesTheFile());
}

// The thread sees a clock that is late by half the delay, then by a little more than all of it: a line is due
// when the real one has come to the end of the delay.
TEST(TidTest, ALineIsDueTheDelayAfterTheOneBeforeIt) {
  struct timespec stNow = {};
  clock_gettime(CLOCK_MONOTONIC, &stNow);
  if (stNow.tv_sec < 100) GTEST_SKIP() << "the clock has only begun";
  const auto u64NowUs = static_cast<uint64_t>(stNow.tv_sec) * 1000000;
  for (const bool bDue : {false, true}) {
    const DebugLayer layer;
    FakeCounters clock;
    clock.u64NowUs = u64NowUs - (bDue ? 60000001 : 30000000);
    Store(s32KestDebugTidTestDelayMs, 60000);
    const ReportCapture capture;
    const TestThread test(kCreateTidTest, _stKestDebugTidTest);
    EXPECT_TRUE(WaitFor([&] { return TidTestLines(capture) >= (bDue ? 3 : 1); }));
    usleep(100000);
    EXPECT_EQ(bDue, TidTestLines(capture) > 1);
  }
}

TEST(PthreadSignalTest, WaitsUntilItMayRunAndRunsUntilItShallWait) {
  const DebugLayer layer;
  const ReportCapture capture;
  {
    const TestThread test(kCreateSignalTest, _stKestDebugPthreadSignalTest);
    WaitForCount(capture, "Pthread signal: wait\n", 1);
    Command("kest_pthread_signal_test=run");
    WaitForCount(capture, "Pthread Signal Test: running\n", 3);
    Command("kest_pthread_signal_test=wait");
    WaitForCount(capture, "Pthread signal: wait\n", 2);
    const int64_t s64Rounds = capture.Count("<PRINT>", "Pthread Signal Test: running\n");
    WaitForCount(capture, "Pthread signal: wait\n", 3);
    // A wait ends by itself; against a deadline of another clock it would have made a great many rounds by
    // now.
    EXPECT_EQ(3, capture.Count("<PRINT>", "Pthread signal: wait\n"));
    EXPECT_EQ(s64Rounds + 1, capture.Count("<PRINT>", "Pthread Signal Test: running\n"));
  }
  EXPECT_EQ(1, capture.Count("<PRINT>", "Pthread signal: start\n"));
  EXPECT_EQ(3, capture.Count("<PRINT>", "Pthread signal: continue\n"));
  EXPECT_EQ(1, capture.Count("<PRINT>", "Pthread Signal Test: end\n"));
  EXPECT_EQ(Texts{}, capture.Texts("<WRN>"));
}

TEST(PthreadSignalTest, TakesItsOwnLinesAloneAndConfirmsThem) {
  const ReportCapture capture;
  for (const char *pszLine : {"kest_pthread_signal_test=run", "kest_pthread_signal_test wait"})
    EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_Cmd_PthreadSignal(pszLine)) << pszLine;
  for (const char *pszLine :
       {"", "kest_pthread_signal=run", "kest_pthread_signal_test=", "kest_pthread_signal_test=runs",
        "kest_pthread_signal=create_test=", "kest_pthread_signal_testx=run"}) {
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, _ZE_KEST_Debug_Cmd_PthreadSignal(pszLine)) << pszLine;
  }
  EXPECT_EQ((Texts{"kest_pthread_signal_test=run\n", "kest_pthread_signal_test=wait\n"}),
            capture.Texts("<PRINT>"));
}

}  // namespace kest::test
