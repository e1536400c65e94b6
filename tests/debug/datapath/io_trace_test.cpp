// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/io_trace.h"

#include <atomic>
#include <thread>

#include <sys/stat.h>

#include "tests/support/library_test.h"

namespace kest::test {
namespace {

class IoTrace : public testing::Test {
 protected:
  ~IoTrace() override { Command("release"); }

  static uint32_t Command(const std::string &value) {
    return _ZE_KEST_Debug_Cmd_Io(("kest_debug_filter_io=" + value).c_str());
  }
  static std::string Traced(const std::string &pipeline) {
    return ReadFile(KEST_DEBUG_DIR + pipeline + ".txt");
  }
  static void Cycle(const char *pszPipeline) {
    ze_kest_Debug_Io(pszPipeline, nullptr, ZE_KEST_IO_FILTER_START, 1000, 1030);
    ze_kest_Debug_Io(pszPipeline, "eq", ZE_KEST_IO_FILTER_END, 1000, 1050);
    ze_kest_Debug_Io(pszPipeline, "eq", ZE_KEST_IO_PIPELINE_END, 1000, 1090);
  }

  DebugLayer layer_;
};

constexpr const char *kCycle = "[f:eq,t1:30,t2:50,td:20]\n[ct:1000,stop:1090][p:pipe,t:90]\n\n";

TEST_F(IoTrace, WritesTheEventsOfThePipelinesWhoseNamesBeginAlike) {
  EXPECT_EQ(ZE_KEST_OK, Command(",pipe,,eq,further"));
  EXPECT_EQ(0u, ze_kest_Debug_Io_Is_Enable());  // a new watch waits for its restart
  Cycle("pipe");
  EXPECT_EQ(ZE_KEST_OK, Command("pipe2"));
  EXPECT_EQ(ZE_KEST_OK, Command("third"));
  EXPECT_EQ(ZE_KEST_OK, Command("restart"));
  EXPECT_EQ(1u, ze_kest_Debug_Io_Is_Enable());
  Cycle("pipe");
  Cycle("pip");
  EXPECT_EQ(kCycle, Traced("pipe"));
  EXPECT_EQ("", Traced("pipe2"));
  ze_kest_Debug_Io("other", "eq", ZE_KEST_IO_FILTER_START, 0, 7);  // not watched, so its start is not kept

  // Ends before its start, no name, no known type, a clock that ran backwards.
  ze_kest_Debug_Io("pipe2", "eq", ZE_KEST_IO_FILTER_END, 1000, 1010);
  ze_kest_Debug_Io("pipe2", nullptr, ZE_KEST_IO_FILTER_END, 1000, 1010);
  ze_kest_Debug_Io("pipe2", "eq", 2, 1000, 1010);
  ze_kest_Debug_Io("pipe2", "eq", ZE_KEST_IO_PIPELINE_END, 0, 0x100000002);
  ze_kest_Debug_Io("pipe2", "eq", ZE_KEST_IO_PIPELINE_END, 1000, 999);
  const std::string odd =
      "[f:eq,t1:30,t2:10,td:0]\n[ct:0,stop:4294967298][p:pipe2,t:2]\n\n[ct:1000,stop:999][p:pipe2,t:0]\n\n";
  EXPECT_EQ(kCycle + odd, Traced("pipe"));
  EXPECT_EQ(odd, Traced("pipe2"));
  EXPECT_EQ("", Traced("third"));

  EXPECT_EQ(ZE_KEST_OK, Command("stop"));
  Cycle("pipe");
  EXPECT_EQ(kCycle + odd, Traced("pipe"));
  EXPECT_EQ(ZE_KEST_OK, Command("restart"));
  Cycle("pipe");
  EXPECT_EQ(kCycle + odd + kCycle, Traced("pipe"));
  EXPECT_EQ(ZE_KEST_OK, Command("pipe"));  // a new watch begins its file anew and switches the trace off
  EXPECT_EQ("", Traced("pipe"));
  EXPECT_EQ(0u, ze_kest_Debug_Io_Is_Enable());
}

TEST_F(IoTrace, RepliesToEveryWord) {
  const auto reports = [](const std::string &value, uint32_t u32Expected) {
    const ReportCapture capture;
    EXPECT_EQ(u32Expected, Command(value)) << value;
    Texts texts;
    for (const Report &report : capture.Reports())
      texts.push_back(report.text);
    return texts;
  };
  EXPECT_THAT(reports("", 8), IsEmpty());
  EXPECT_THAT(reports("release", 0),
              ElementsAre("kest_debug_filter_io=release\n", "Error! No debug info node in this list!\n"));
  const std::string path = KEST_DEBUG_DIR "main.txt";
  EXPECT_THAT(reports("main,eq,print", 0),
              ElementsAre("PipelineName=main\n", "Filter=eq\n", "szFile=" + path + "\n"));
  char szFile[32];
  snprintf(szFile, sizeof(szFile), "0x%p\n", static_cast<void *>(pFileKestDebugPipeline));
  EXPECT_EQ(0u, Command("aux"));
  char szAux[32];
  snprintf(szAux, sizeof(szAux), "0x%p\n", static_cast<void *>(pFileKestDebugPipeline));
  EXPECT_THAT(reports("restart,print_watch_list", 0),
              ElementsAre("kest_debug_filter_io=restart\n", "print_watch_list\n", "bIoDebug=1\n",
                          "===============\n", "[DebugInfoList]\n", "===============\n",
                          "idx:0  p:main                 f:eq              pf:" + std::string(szFile),
                          "idx:1  p:aux                  f:                pf:" + std::string(szAux),
                          "===============\n"));
  const auto before = OpenDescriptors();
  EXPECT_THAT(reports("release", 0), ElementsAre("kest_debug_filter_io=release\n"));
  EXPECT_EQ(before - 2, OpenDescriptors());
  EXPECT_EQ(nullptr, pFileKestDebugPipeline);
  EXPECT_EQ("bIoDebug=0\n", reports("print_watch_list,stop", 0).at(1));
  EXPECT_EQ(8u, _ZE_KEST_Debug_Cmd_Io("kest_debug_filter_io"));
  EXPECT_EQ(8u, _ZE_KEST_Debug_Cmd_Io("kest_debug_filter=stop"));
  EXPECT_EQ(0u, _ZE_KEST_Debug_Cmd_Io("kest_debug_filter_io stop"));
}

TEST_F(IoTrace, WatchesWithoutAFileWhereNoneCanBeOpened) {
  ASSERT_EQ(0, mkdir(KEST_DEBUG_DIR "dir.txt", 0700));
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_FAILED, Command("dir"));
  const std::string failure = "Err! ze_kest_Utility_FileOpen failed!\n";
  EXPECT_THAT(capture.Texts("<ERR>"), ElementsAre(failure, failure));
  EXPECT_EQ(nullptr, pFileKestDebugPipeline);
  EXPECT_EQ(ZE_KEST_OK, Command("restart"));
  EXPECT_EQ(1u, ze_kest_Debug_Io_Is_Enable());
  Cycle("dir");
}

TEST_F(IoTrace, AWatchBeyondTheSixteenthIsRefusedAndLeavesItsFileAlone) {
  for (int i = 0; i < 16; ++i)
    EXPECT_EQ(ZE_KEST_OK, Command("pipe" + std::to_string(i)));
  WriteFile(KEST_DEBUG_DIR "pipe16.txt", "of an earlier watch");
  const auto before = OpenDescriptors();
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_FAILED, Command("pipe16"));
  EXPECT_THAT(capture.Texts("<ERR>"), ElementsAre("Err! 16 watches are set already, release them first\n"));
  EXPECT_EQ("of an earlier watch", Traced("pipe16"));
  EXPECT_EQ(before, OpenDescriptors());
  EXPECT_EQ(ZE_KEST_OK, Command("release"));
  EXPECT_EQ(ZE_KEST_OK, Command("pipe16"));
}

TEST_F(IoTrace, ANameThatLeadsOutOfTheDirectoryOrToTheLogIsRefused) {
  const std::string outside = KEST_DEBUG_DIR "../outside.txt";
  WriteFile(outside, "somebody's");
  const auto sztLog = ReadFile(kLogFile).size();
  const ReportCapture capture;
  for (const std::string name : {"../outside", "/outside", "a/b", "KestLog"}) {
    EXPECT_EQ(ZE_KEST_FAILED, Command(name)) << name;
    EXPECT_TRUE(capture.Has("<ERR>", "Err! '" + name + "' names no trace file\n"));
  }
  EXPECT_EQ("somebody's", ReadFile(outside));
  EXPECT_GT(ReadFile(kLogFile).size(), sztLog);
  EXPECT_EQ(ZE_KEST_OK, Command("KestLogger,restart"));
  EXPECT_EQ(1u, ze_kest_Debug_Io_Is_Enable());
  std::remove(outside.c_str());
}

TEST_F(IoTrace, WatchesAndReleasesBesideRunningPipelines) {
  std::atomic<bool> stop{false};
  std::thread tracer([&] {
    while (!stop)
      Cycle("pipe");
  });
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(ZE_KEST_OK, Command("pipe"));
    EXPECT_EQ(ZE_KEST_OK, Command("pi"));
    EXPECT_EQ(ZE_KEST_OK, Command("restart"));
    EXPECT_TRUE(WaitFor([] { return Traced("pi").find("[p:pipe,t:90]\n\n") != std::string::npos; }));
    EXPECT_EQ(ZE_KEST_OK, Command("release"));
  }
  stop = true;
  tracer.join();
}

}  // namespace
}  // namespace kest::test
