// SPDX-License-Identifier: Apache-2.0
#include <filesystem>
#include <thread>

#include <unistd.h>

#include "debug/log/log_file.h"
#include "debug/log/log_line.h"
#include "tests/support/disk.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/library_test.h"

namespace kest::test {
namespace {

// What the calls append to the log file.
template <typename Calls>
std::string LoggedBy(Calls &&calls) {
  const size_t sztBefore = ReadFile(kLogFile).size();
  calls();
  return ReadFile(kLogFile).substr(sztBefore);
}

std::string LoggedError() {
  return LoggedBy([] { ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "x\n"); });
}

void LogLines(int s32Count, uint32_t u32Level, const char *pszText) {
  for (int i = 0; i < s32Count; ++i)
    ze_kest_Debug_Log(u32Level, "%s\n", pszText);
}

TEST(Log, NothingIsWrittenBeforeStartAndAfterShutDownThoughTheSinksAreOn) {
  EmptyDebugDirectory();
  const auto switchOnAndLog = [](const char *pszText) {
    ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%s", "");  // sets the base up, which switches the sinks off
    _ZE_KEST_Debug_SetMode(kLogToConsole, 1);
    _ZE_KEST_Debug_SetMode(kLogToFile, 1);
    ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "%s", pszText);
  };
  testing::internal::CaptureStdout();
  switchOnAndLog("early\n");
  ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  ShutDown();
  std::filesystem::remove(KEST_DEBUG_DIR "shm_global");
  switchOnAndLog("late\n");
  ResetLogSinks();
  for (const std::string &sink : {testing::internal::GetCapturedStdout(), ReadFile(kLogFile)})
    EXPECT_THAT(sink, AllOf(Not(HasSubstr("early")), Not(HasSubstr("late"))));
  // The late line did not set the base up anew.
  EXPECT_FALSE(std::filesystem::exists(KEST_DEBUG_DIR "shm_global"));
}

TEST(Log, EveryLevelHasItsColourAndLabelAndPrintHasNoPrefix) {
  const DebugLayer layer;
  const std::string ids = std::to_string(getpid()) + " " + std::to_string(ze_kest_Utility_GetTid());
  const std::string middle =
      ids + R"( \[2023/06/01,01,0]\[[0-9][0-9]-[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9].[0-9]{3}]<ZE3><)";
  struct {
    unsigned int u32Level;
    const char *pszColour;
    const char *pszLabel;
  } const aLevels[] = {{32, "\033\\[1;31m", "ERR"},      {48, "\033\\[1;33m", "WRN"},
                       {64, "\033\\[1;32m", "INFO"},     {80, "\033\\[1;36m", "TRACE"},
                       {240, "\033\\[1;7;32m", "ENTER"}, {241, "\033\\[1;7;32m", "EXIT"},
                       {242, "\033\\[1;31m", "ERR"},     {33, "", ""}};
  for (const auto &level : aLevels) {
    const std::string line = LoggedBy([&] { ze_kest_Debug_Log(level.u32Level, "f[%d]: text\n", 7); });
    const std::string end = *level.pszColour == '\0' ? "" : "\033\\[0m";
    EXPECT_THAT(line, MatchesRegex(level.pszColour + middle + level.pszLabel + ">" + end + "f\\[7]: text\n"));
  }
  EXPECT_EQ("plain\n", LoggedBy([] { ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "plain\n"); }));
}

TEST(Log, AThreadAndTheChildOfAForkWriteTheirOwnIds) {
  const DebugLayer layer;
  LoggedError();
  std::thread([] {
    const std::string tid = std::to_string(ze_kest_Utility_GetTid());
    EXPECT_THAT(LoggedError(), HasSubstr("m" + std::to_string(getpid()) + " " + tid + " ["));
  }).join();
  EXPECT_EQ(0, InAnotherProcess([] {
              const std::string id = std::to_string(getpid());
              EXPECT_THAT(LoggedError(), HasSubstr("m" + id + " " + id + " ["));
            }));
  EXPECT_THAT(LoggedError(), HasSubstr("m" + std::to_string(getpid()) + " "));
}

TEST(Log, AChangeOfTheTimeZoneShowsInTheNextLine) {
  const DebugLayer layer;
  // "0/0,J365/25": summer time all the year.
  for (const auto &[zone, s32Hours] :
       {std::pair{"AAA-5", 5}, std::pair{"BBB3", -3}, std::pair{"BBB4", -4}, std::pair{"BBB3", -3},
        std::pair{"BBB3DDD,0/0,J365/25", -2}, std::pair{"BBB3EEE1,0/0,J365/25", -1},
        std::pair{"EEE3EEE1,0/0,J365/25", -1}, std::pair{"CCC3EEE,0/0,J365/25", -2},
        std::pair{"EEE3EEE1,0/0,J365/25", -1}, std::pair{"CCC-5", 5}}) {
    setenv("TZ", zone, 1);
    tzset();
    const auto now = [hours = s32Hours] {  // of the log's own clock: time() may lag it
      struct timespec st = {};
      clock_gettime(CLOCK_REALTIME, &st);
      st.tv_sec += hours * 3600;
      char szTime[32];
      struct tm stTime = {};
      strftime(szTime, sizeof(szTime), "%m-%d %H:%M:%S.", gmtime_r(&st.tv_sec, &stTime));
      return szTime + std::to_string(1000 + st.tv_nsec / 1000000).substr(1);
    };
    const std::string before = now();
    const std::string line = LoggedError();
    const std::string after = now();
    const std::string logged = line.substr(line.find("][") + 2, before.size());
    if (after < before) continue;  // a new year
    EXPECT_LE(before, logged);
    EXPECT_LE(logged, after);
  }
  unsetenv("TZ");
  tzset();
}

TEST(Log, TheConsoleGetsTheMessageAloneAndOnlyWhenSwitchedOn) {
  const DebugLayer layer;
  testing::internal::CaptureStdout();
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "unseen\n");
  Command("kest_log_to_print=on");
  printf("of the process itself\n");
  FILE *pConsole = stdout;
  char *pszMemory = nullptr;
  size_t sztMemory = 0;
  stdout = open_memstream(&pszMemory, &sztMemory);
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "in memory %d\n", 1);
  fclose(stdout);
  stdout = pConsole;
  EXPECT_STREQ("in memory 1\n", pszMemory);
  free(pszMemory);
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "seen %d\n", 1);
  Command("kest_log_to_print=off");
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "unseen\n");
  const std::string console = testing::internal::GetCapturedStdout();
  EXPECT_THAT(console, HasSubstr("\nof the process itself\nseen 1\n"));
  EXPECT_THAT(console, Not(HasSubstr("unseen")));
}

TEST(Log, ARestartEmptiesTheFileCountsAndKeepsTheSwitch) {
  const DebugLayer layer;
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "old\n");
  Command("kest_log_restart");
  EXPECT_THAT(ReadFile(kLogFile), Not(HasSubstr("old")));
  EXPECT_THAT(LoggedError(), HasSubstr("[2023/06/01,01,1]"));

  Command("kest_log_to_file=off");
  const ReportCapture capture;
  Command("kest_log_restart");
  EXPECT_THAT(capture.Texts("<ERR>"), IsEmpty());
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "while off\n");
  EXPECT_EQ("", ReadFile(kLogFile));
  Command("kest_log_to_file=on");
  EXPECT_THAT(LoggedError(), HasSubstr("[2023/06/01,01,2]"));
  ShutDown();  // switches it off
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_LogRestart());
  EXPECT_EQ(1, capture.Count("<PRINT>", "Log to file(1)\n"));
}

TEST(Log, AFileThatHasGrownTooLongIsRestartedAtA1000thMessage) {
  const DebugLayer layer;
  Command("kest_log_size=5000");
  // The commands' own lines count too: between the 900th and the 999th message nothing is restarted yet.
  LogLines(900, ZE_KEST_LEVEL_PRINT, "0123456789");
  EXPECT_GT(std::filesystem::file_size(kLogFile), 9000u);
  LogLines(200, ZE_KEST_LEVEL_PRINT, "0123456789");
  EXPECT_LT(std::filesystem::file_size(kLogFile), 2200u);
  EXPECT_THAT(LoggedError(), HasSubstr("[2023/06/01,01,1]"));

  // Below the size a 1000th message changes nothing.
  Command("kest_log_size=1000000");
  LogLines(1000, ZE_KEST_LEVEL_PRINT, "0123456789");
  EXPECT_GT(std::filesystem::file_size(kLogFile), 11000u);
}

TEST(Log, AFileIsTooLongBeyondItsLimitWhichIsFirst20MiBAndEvery1000thMessageLooks) {
  const DebugLayer layer;
  for (const auto &[sztBytes, sztKept] : {std::pair{20971520u, 20971520u}, std::pair{20971521u, 0u}}) {
    std::filesystem::resize_file(kLogFile, sztBytes);
    LimitLogFile();
    EXPECT_EQ(sztKept, std::filesystem::file_size(kLogFile));
  }
  SetLogSizeMax(0);
  const auto messagesToTheNextRestart = [] {
    const int32_t s32Before = LogRestartCount();
    int s32Count = 0;
    for (; LogRestartCount() == s32Before && s32Count < 2000; ++s32Count)
      ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "x\n");
    return s32Count;
  };
  messagesToTheNextRestart();
  EXPECT_EQ(1000, messagesToTheNextRestart());
}

TEST(LogLine, TakesTextsOfAnyLengthOrNothingOfThem) {
  for (size_t sztLength = 1020; sztLength < 1030; ++sztLength) {
    LogLine line;
    const std::string text(sztLength, 'x');
    {
      const FailingAllocator memory(1);
      const bool bFits = sztLength < 1024;  // with its end
      EXPECT_EQ(bFits, line.AppendText(text)) << sztLength;
      EXPECT_EQ(bFits ? text : "", line.c_str());
    }
    const std::string before = line.c_str();
    EXPECT_TRUE(line.AppendText(text) && line.Append("%d", 12345));
    EXPECT_EQ(before + text + "12345", line.c_str());
    EXPECT_EQ(before.size() + sztLength + 5, line.Length());
  }
}

TEST(Log, ALongLineIsWholeAndWithoutMemoryForItCutBeforeTheNext) {
  const DebugLayer layer;
  std::string text;
  while (text.size() < 5000)
    text += std::to_string(text.size()) + ' ';
  const auto logLong = [&text] { ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%s|\n", text.c_str()); };
  EXPECT_EQ(text + "|\n", LoggedBy(logLong));
  for (size_t sztBytes = 1020; sztBytes < 1030; ++sztBytes) {  // as much as fits without memory, and more
    const std::string line = text.substr(0, sztBytes) + "\n";
    EXPECT_EQ(line, LoggedBy([&line] { ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%s", line.c_str()); }));
  }

  const ReportCapture capture;
  const std::string cut = LoggedBy([&logLong] {
    const FailingAllocator memory(1);
    logLong();
  });
  EXPECT_THAT(capture.Texts("<ERR>"), ElementsAre("Error! MALLOC error! \n", "Error! Fail to vfprintf()!\n"));
  const std::string kept = cut.substr(0, cut.size() - 1);
  EXPECT_GT(kept.size(), 1000u);
  EXPECT_EQ(text.substr(0, kept.size()) + "\n", cut);
}

TEST(Log, ATextThatCannotBeFormattedIsReportedAndTheNextIsWhole) {
  const DebugLayer layer;
  const ReportCapture capture(ZE_KEST_LEVEL_ERR);
  const wchar_t acNoCharacter[] = {0x7FFFFFFF, 0};
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "%ls\n", acNoCharacter);
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%s", "");  // which can
  EXPECT_THAT(capture.Texts("<ERR>"), ElementsAre("Error! Fail to vfprintf()!\n"));
  EXPECT_THAT(LoggedError(), EndsWith("<ERR>\033[0mx\n"));
}

TEST(Log, LinesOfManyThreadsNeverInterleave) {
  const DebugLayer layer;
  Command("kest_log_restart");
  constexpr int kThreads = 8;
  constexpr int kLines = 200;
  const std::string text = std::string(100, 'x') + '|';
  InThreads(kThreads, [&text](int) { LogLines(kLines, ZE_KEST_LEVEL_ERR, text.c_str()); });
  int s32Whole = 0;
  for (const std::string &line : LinesOf(ReadFile(kLogFile))) {
    if (line.find("xx") == std::string::npos) continue;
    EXPECT_THAT(line, AllOf(StartsWith("\033[1;31m"), EndsWith("<ERR>\033[0m" + text)));
    ++s32Whole;
  }
  EXPECT_EQ(kThreads * kLines, s32Whole);
}

TEST(Log, AFileThatCannotBeOpenedOrWrittenAndAnUnknownModeAreReportedOnceAndLoggingGoesOn) {
  const DebugLayer layer;
  const ReportCapture capture;
  _ZE_KEST_Debug_SetMode(kLogToFile, 0);
  std::filesystem::remove(kLogFile);
  std::filesystem::create_directory(kLogFile);
  EXPECT_EQ(ZE_KEST_FAILED, _ZE_KEST_Debug_SetMode(kLogToFile, 1));
  EXPECT_TRUE(capture.Has("<ERR>", "Err! ze_kest_Utility_FileOpen failed!\n"));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_SetParameter("kest_log_restart"));
  EXPECT_TRUE(capture.Has("<ERR>", "Err! fopen failed!\n"));
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "nowhere\n");
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_SetMode(2, 1));
  EXPECT_TRUE(capture.Has("<ERR>", "Err! eMode(2) not found\n"));

  std::filesystem::remove(kLogFile);
  Command("kest_log_restart");
  EXPECT_EQ("Log to file(0)\n", capture.Reports().back().text);  // the one that failed has switched it off
  Command("kest_log_to_file=on");
  {
    const FileSizeLimit nothing(0);
    ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "lost\n");
  }
  EXPECT_EQ(1, capture.Count("<ERR>", "Error! Fail to fflush()!\n"));
  EXPECT_EQ("ze_kest_Debug_Log", capture.Reports().back().function);
}

TEST(Log, LostAndCutLinesAreCountedInTheNextOneAndForgottenByARestart) {
  const DebugLayer layer;
  const auto lose = [] {
    const FileSizeLimit limit(static_cast<rlim_t>(std::filesystem::file_size(kLogFile)) + 10);
    LogLines(3, ZE_KEST_LEVEL_PRINT, "this one is cut and no other fits");
  };
  const auto print = [] { LogLines(1, ZE_KEST_LEVEL_PRINT, "next"); };
  EXPECT_EQ("this one i\nLost lines: 3\nnext\nnext\n", LoggedBy([&] {
              lose();
              print();
              print();
            }));
  lose();
  Command("kest_log_restart");
  print();
  EXPECT_EQ("next\n", ReadFile(kLogFile));
  lose();
  std::filesystem::resize_file(kLogFile, 0);  // as another process's restart does
  print();
  EXPECT_EQ("Lost lines: 3\nnext\n", ReadFile(kLogFile));
  EXPECT_EQ("this one i\nLost lines: 3\nnext\n", LoggedBy([&] {
              lose();
              WriteFile(kLogFile, ReadFile(kLogFile) + "\n");  // as another process's next line does
              print();
            }));
}

TEST(Log, RestartsAtOnceAreAllDoneAndKeepTheSwitch) {
  const DebugLayer layer;
  __android_log_set_logger([](const __android_logger_data *, const char *) {});
  InThreads(4, [](int) {
    for (int i = 0; i < 100; ++i)
      Command("kest_log_restart");
  });
  __android_log_set_logger(__android_log_stderr_logger);
  EXPECT_THAT(LoggedError(), HasSubstr("[2023/06/01,01,400]"));
}

TEST(Log, AFileThatCannotBeClosedIsReportedAndNothingHangs) {
  const DebugLayer layer;
  const ReportCapture capture;
  std::error_code error;
  for (int fd = 3; fd < 256; ++fd) {
    if (std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd), error) == kLogFile) close(fd);
  }
  Command("kest_log_to_file=off");
  EXPECT_TRUE(capture.Has("<ERR>", "Error! Fail to close file\n"));
  Command("kest_log_to_file=on");
}

TEST(LogToFile, WritesTheMessageAloneFlushedAndReportsAFailure) {
  const std::string path = KEST_DEBUG_DIR "own";
  FILE *pFile = fopen(path.c_str(), "w");
  ze_kest_Utility_LogToFile(pFile, "%s %d\n", "line", 1);
  EXPECT_EQ("line 1\n", ReadFile(path));
  fclose(pFile);
  ze_kest_Utility_LogToFile(nullptr, "nowhere\n");

  const ReportCapture capture;
  FILE *pFull = fopen("/dev/full", "w");
  ze_kest_Utility_LogToFile(pFull, "lost\n");
  EXPECT_EQ((Texts{"Error! Fail to fflush()!\n"}), capture.Texts("<ERR>"));
  fclose(pFull);
  FILE *pReadOnly = fopen(path.c_str(), "r");
  ze_kest_Utility_LogToFile(pReadOnly, "refused\n");
  EXPECT_TRUE(capture.Has("<ERR>", "Error! Fail to vfprintf()!\n"));
  fclose(pReadOnly);
}

}  // namespace
}  // namespace kest::test
