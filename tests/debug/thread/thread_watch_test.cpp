// SPDX-License-Identifier: Apache-2.0
#include "debug/thread/thread_watch.h"

#include <atomic>
#include <thread>

#include "debug/thread/thread_commands.h"
#include "tests/debug/registry/registry_fixture.h"

namespace kest::test {
namespace {

// A thread that logs its name when it is told to.
class Talker {
 public:
  explicit Talker(const char *pszName) : pszName_(pszName), thread_([this] { Run(); }) {
    EXPECT_TRUE(WaitFor([this] { return u32Tid_ != 0; }));
  }
  ~Talker() {
    u32Tid_ = 0;
    thread_.join();
  }

  void Say() {
    bAsked_ = true;
    EXPECT_TRUE(WaitFor([this] { return !bAsked_; }));
  }
  [[nodiscard]] uint32_t Tid() const { return u32Tid_; }

 private:
  void Run() {
    for (u32Tid_ = static_cast<uint32_t>(ze_kest_Utility_GetTid()); u32Tid_ != 0; std::this_thread::yield()) {
      if (!bAsked_) continue;
      ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%s", pszName_);
      bAsked_ = false;
    }
  }

  const char *pszName_;
  std::atomic<uint32_t> u32Tid_{0};
  std::atomic<bool> bAsked_{false};
  std::thread thread_;
};

using ThreadWatch = RegistryTest;

class ThreadWatchLog : public RegistryTest {
 protected:
  // What reaches the log file when this thread ("-") and the two talkers log after the command.
  std::string LoggedAfter(const std::string &line) {
    Command(line);
    const size_t sztBefore = ReadFile(kLogFile).size();
    ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "-");
    a_.Say();
    b_.Say();
    return ReadFile(kLogFile).substr(sztBefore);
  }

  Talker a_{"a"};
  Talker b_{"b"};
  const std::string watchA_ = "kest_debug_watch_tid=" + std::to_string(a_.Tid());
  const std::string watchB_ = "kest_debug_watch_tid=" + std::to_string(b_.Tid());
};

// The ids of both lists behind their places, as "watched | disabled".
std::string Lists() {
  const ReportCapture capture;
  PrintWatchedThreads("watched");
  PrintDisabledThreads("disabled");
  std::string watched;
  std::string disabled;
  for (const Report &report : capture.Reports()) {
    int s32Place = 0;
    int s32Tid = 0;
    if (sscanf(report.text.c_str(), "id:%d, tid:%d\n", &s32Place, &s32Tid) != 2) continue;
    const std::string entry = std::to_string(s32Place) + ":" + std::to_string(s32Tid);
    if (report.function == "watched") watched += entry + " ";
    if (report.function == "disabled") disabled += " " + entry;
  }
  return watched + "|" + disabled;
}

std::string ListsAfter(const std::string &line) {
  Command(line);
  return Lists();
}

TEST_F(ThreadWatchLog, NarrowsToTheWatchedThreads) {
  EXPECT_EQ("a", LoggedAfter(watchA_));
  EXPECT_EQ("ab", LoggedAfter("kest_debug_watch_tid=0,1,," + std::to_string(b_.Tid()) + "," +
                              std::to_string(a_.Tid())));
  EXPECT_EQ("", LoggedAfter("kest_debug_watch_tid=1"));
  EXPECT_EQ("-ab", LoggedAfter("kest_debug_watch_tid=0"));
}

TEST_F(ThreadWatchLog, LeavesOutTheRegisteredThreadsUntilTheyAreWatched) {
  AddPipeline("A", a_.Tid());
  AddPipeline("B", b_.Tid());
  EXPECT_EQ("-", LoggedAfter("kest_debug_watch_current_tids=off"));
  // The watch list itself does not decide in this mode.
  EXPECT_EQ("-b", LoggedAfter(watchB_));
  EXPECT_EQ("-ab", LoggedAfter(watchA_));
  EXPECT_EQ("-", LoggedAfter("kest_debug_watch_current_tids=off"));
  EXPECT_EQ("-ab", LoggedAfter("kest_debug_watch_current_tids=on"));
}

TEST_F(ThreadWatchLog, AThreadThatIsLeftOutReachesTheAndroidLogAlone) {
  Command("kest_log_to_print=on");
  Command("kest_debug_watch_tid=1");
  const std::string before = ReadFile(kLogFile);
  testing::internal::CaptureStdout();
  const ReportCapture capture;
  Command("kest_atrace=on");
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
  EXPECT_EQ(before, ReadFile(kLogFile));
  EXPECT_TRUE(capture.Has("<PRINT>", "kest_atrace=on\n"));
}

TEST_F(ThreadWatch, AnswersWithTheListsAsTheyAreNow) {
  for (const uint32_t u32Tid : {7u, 7u, 9u})
    AddPipeline("P", u32Tid);
  EXPECT_EQ((Texts{"kest_debug_watch_current_tids=off\n", "disable tids list:\n", "id:0, tid:7\n",
                   "id:1, tid:9\n"}),
            PrintsOf("kest_debug_watch_current_tids=off"));
  EXPECT_EQ((Texts{"watch tid list:\n", "id:0, tid:9\n", "id:1, tid:255\n", "disable tids list:\n",
                   "id:0, tid:7\n"}),
            PrintsOf("kest_debug_watch_tid=9,0xff"));
  EXPECT_EQ((Texts{"kest_debug_watch_current_tids=on\n"}), PrintsOf("kest_debug_watch_current_tids=on"));
  EXPECT_EQ((Texts{"watch tid list:\n", "disable tids list:\n"}), PrintsOf("kest_debug_watch_tid=0"));
}

TEST_F(ThreadWatch, DropsOnlyConsecutiveRepeatsOfTheRegistryButEveryOneOfAWatchedThread) {
  for (const uint32_t u32Tid : {7u, 7u, 9u, 7u})
    AddPipeline("P", u32Tid);
  EXPECT_EQ("| 0:7 1:9 2:7", ListsAfter("kest_debug_watch_current_tids=off"));
  EXPECT_EQ("0:8 | 0:7 1:9 2:7", ListsAfter("kest_debug_watch_tid=8"));
  EXPECT_EQ("0:7 | 1:9", ListsAfter("kest_debug_watch_tid=7"));
  // What has left the disable list stays away from it.
  EXPECT_EQ("| 1:9", ListsAfter("kest_debug_watch_tid=0"));
  EXPECT_EQ("| 0:7 1:9 2:7", ListsAfter("kest_debug_watch_current_tids=off"));
  EXPECT_EQ("|", ListsAfter("kest_debug_watch_current_tids=on"));
}

TEST_F(ThreadWatch, KeepsTwentyFourIdsAndIgnoresTheRest) {
  std::string line = "kest_debug_watch_tid=";
  std::string watched;
  std::string disabled = "|";
  for (uint32_t i = 0; i < 30; ++i) {
    AddPipeline("P", 100 + i);
    line += std::to_string(200 + i) + ",";
    if (i >= 24) continue;
    watched += std::to_string(i) + ":" + std::to_string(200 + i) + " ";
    disabled += " " + std::to_string(i) + ":" + std::to_string(100 + i);
  }
  EXPECT_EQ(disabled, ListsAfter("kest_debug_watch_current_tids=off"));
  // An id that is ignored does not leave the disable list either.
  EXPECT_EQ(watched + disabled, ListsAfter(line + "100,101"));
}

TEST_F(ThreadWatch, ALineThatItDoesNotKnowChangesNothingButOneWithoutIdsEmptiesTheWatchList) {
  AddPipeline("P", 7);
  Command("kest_debug_watch_current_tids=off");
  const std::string before = ListsAfter("kest_debug_watch_tid 8");
  EXPECT_EQ("0:8 | 0:7", before);
  for (const char *pszLine :
       {"", "kest_debug_watch_current_tids=", "kest_debug_watch_current_tids=ON",
        "kest_debug_watch_current_tids=on,off", "kest_debug_watch_tidx=1", "kest_debug_watch_ti=1",
        "kest_debug_watch_tid,1", "kest_debug_watch=", "kest_debug_watch=create_test,"}) {
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, _ZE_KEST_Debug_Cmd_WatchCurrentTids(pszLine)) << pszLine;
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, _ZE_KEST_Debug_Cmd_WatchTid(pszLine)) << pszLine;
    EXPECT_EQ(before, Lists()) << pszLine;
  }
  for (const char *pszLine : {"kest_debug_watch_tid", "kest_debug_watch_tid=", "kest_debug_watch_tid=,,"}) {
    Command("kest_debug_watch_tid=8");
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, _ZE_KEST_Debug_Cmd_WatchTid(pszLine));
    EXPECT_EQ("| 0:7", Lists());
  }
}

TEST_F(ThreadWatch, ARestartWatchesEveryThreadAgain) {
  AddPipeline("P", static_cast<uint32_t>(ze_kest_Utility_GetTid()));
  Command("kest_debug_watch_current_tids=off");
  Command("kest_debug_watch_tid=8");
  EXPECT_FALSE(IsThisThreadLogged());
  EXPECT_EQ(ZE_KEST_OK, ShutDown());
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  EXPECT_EQ("|", Lists());
  EXPECT_TRUE(IsThisThreadLogged());
  Command("kest_debug_watch_tid=8");  // it is the watch list that decides
  EXPECT_FALSE(IsThisThreadLogged());
}

}  // namespace
}  // namespace kest::test
