// SPDX-License-Identifier: Apache-2.0
// What the debug layer makes of a device that fails it: real disks, files and limits.
#include <filesystem>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/disk.h"
#include "tests/support/library_test.h"

namespace kest::test {
namespace {

namespace fs = std::filesystem;

// While it lives, no file can be opened.
class NoDescriptors {
 public:
  NoDescriptors() {
    getrlimit(RLIMIT_NOFILE, &stBefore_);
    const struct rlimit stNone = {0, stBefore_.rlim_max};
    EXPECT_EQ(0, setrlimit(RLIMIT_NOFILE, &stNone));
  }
  ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &stBefore_); }
  NoDescriptors(const NoDescriptors &) = delete;
  NoDescriptors &operator=(const NoDescriptors &) = delete;

 private:
  struct rlimit stBefore_ = {};
};

void LogError(const std::string &text) {
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "%s\n", text.c_str());
}

// An empty debug directory in which a process finds every level switched on from its start.
void EmptyDirectoryAtFullLevel() {
  EmptyDebugDirectory();
  WriteFile(KEST_DEBUG_DIR "shm_global", {static_cast<char>(ZE_KEST_LEVEL_ENTER), '\0', '\0', '\0'});
}

void ExpectErrors(const ReportCapture &capture, const std::vector<const char *> &texts) {
  for (const char *pszText : texts) {
    EXPECT_TRUE(WaitFor([&] { return capture.Has("<ERR>", pszText); })) << pszText;
  }
}

// Starts the layer: it reads commands and logs.
void ExpectTheLayerWorks() {
  const DebugLayer layer;
  WriteToPipe("kest_log_size=12345\n");
  EXPECT_TRUE(WaitFor([] { return ReadFile(kLogFile).find("LogSizeMax:12345\n") != std::string::npos; }));
}

TEST(Faults, WhatStandsInThePipesPlaceAndIsNoneIsNotReadAndHoldsNothingUp) {
  const std::string typed = "kest_atrace=on\n";
  const struct {
    void (*pfnMake)(const std::string &typed);
    const char *pszLabel;
    const char *pszReport;
  } things[] = {
      {[](const std::string &text) { WriteFile(kPipe, text); }, "<PRINT>",
       "D is no pipe, no commands are read"},
      {[](const std::string &) { fs::create_symlink("/dev/null", kPipe); }, "<PRINT>", "D is no pipe"},
      {[](const std::string &) { fs::create_directory(kPipe); }, "<ERR>", "open ret = -1 : Is a directory"}};
  const ptrdiff_t s32Descriptors = OpenDescriptors();
  for (const auto &thing : things) {
    EmptyDirectoryAtFullLevel();
    thing.pfnMake(typed);
    const ReportCapture capture;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
    // The file's half of a report comes after the other one.
    EXPECT_TRUE(WaitFor([&] { return ReadFile(kLogFile).find(thing.pszReport) != std::string::npos; }))
        << thing.pszReport;
    EXPECT_TRUE(capture.Has(thing.pszLabel, thing.pszReport)) << thing.pszReport;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_DeInit());  // without a line
    EXPECT_TRUE(WaitFor([] { return ThreadsNamed("KestDebug") == 0; }));
    EXPECT_TRUE(capture.Has("<INFO>", "Start\n") && capture.Has("<INFO>", "End\n"));
    EXPECT_EQ(s32Descriptors, OpenDescriptors());
    EXPECT_EQ(0, bKestAtraceEnable);
    EXPECT_TRUE(!fs::is_regular_file(kPipe) || ReadFile(kPipe) == typed);
  }
  ExpectTheLayerWorks();
}

TEST(Faults, AShutDownDoesNotWaitForALineOfAPipeThatWasRemoved) {
  const std::function<void()> removals[] = {
      [] { fs::remove(kPipe); }, [] { fs::remove_all(KEST_DEBUG_DIR); },
      [] {
        fs::remove(kPipe);
        WriteFile(kPipe, "kest_atrace=on\n");
      },
      [] {
        fs::remove(kPipe);
        ASSERT_EQ(0, mkfifo(kPipe, 0777));
      },
      [] {
        WriteToPipe("kest_atrace=");  // of a writer that has died in mid-line
        fs::remove(kPipe);
      }};
  bool bWhileWaiting = false;
  for (const auto &remove : removals) {
    EmptyDirectoryAtFullLevel();
    const ReportCapture capture;
    ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
    WriteToPipe("kest_atrace=off\n");
    EXPECT_TRUE(WaitFor([&] { return capture.Has("<PRINT>", "kest_atrace=off\n"); }));
    bWhileWaiting = !bWhileWaiting;
    std::thread remover([&] {
      EXPECT_TRUE(!bWhileWaiting || WaitFor([&] { return capture.Has("<PRINT>", "Log to file(0)\n"); }));
      remove();
    });
    if (!bWhileWaiting) remover.join();
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_DeInit());
    if (remover.joinable()) remover.join();
    ExpectErrors(capture, {"D was removed, the thread waits for no line\n"});
    EXPECT_EQ(1, capture.Count("<PRINT>", "kest_atrace=off\n"));  // no line is carried out twice
    EXPECT_TRUE(WaitFor([] { return ThreadsNamed("KestDebug") == 0; }));
  }
  ExpectTheLayerWorks();
}

TEST(Faults, AHundredThousandLinesOfAShellAreAllCarriedOutInOrder) {
  const DebugLayer layer;
  __android_log_set_logger([](const __android_logger_data *, const char *) {});
  ASSERT_EQ(
      0,
      system(
          "i=100000; while [ $i -lt 200000 ]; do echo kest_log_size=1000$i; i=$((i+1)); done >" KEST_DEBUG_DIR
          "D"));
  EXPECT_TRUE(
      WaitFor([] { return ReadFile(kLogFile).find("LogSizeMax:1000199999\n") != std::string::npos; }));
  __android_log_set_logger(__android_log_stderr_logger);
  int s32Next = 1000100000;
  for (const std::string &line : LinesOf(ReadFile(kLogFile)))
    s32Next += line == "LogSizeMax:" + std::to_string(s32Next) ? 1 : 0;
  EXPECT_EQ(1000200000, s32Next);
}

TEST(Faults, AFullDiskLosesTheLinesThatDoNotFitAndNoneAfterThem) {
  if (!MayMount()) GTEST_SKIP() << "needs a mount namespace";
  const Disk disk(0, "size=32k");
  ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  ASSERT_TRUE(WaitFor([] { return fs::is_fifo(kPipe); }));
  LogError("takes a page");
  Disk::Fill();
  const ReportCapture capture;
  constexpr int kLost = 50;
  LogError(std::string(5000, 'c'));  // whose end cuts it
  EXPECT_THAT(ReadFile(kLogFile), EndsWith("c"));
  for (int i = 1; i < kLost; ++i)
    LogError("lost");
  EXPECT_EQ(Texts(kLost, "Error! Fail to fflush()!\n"), capture.Texts("<ERR>"));

  Disk::MakeRoom();
  LogError("after");
  const Texts lines = LinesOf(ReadFile(kLogFile));
  EXPECT_THAT(lines.back(),
              AllOf(StartsWith("\033[1;31m"), EndsWith("<ERR>\033[0mafter"), Not(HasSubstr("cc"))));
  EXPECT_THAT(lines, AllOf(Contains("Lost lines: 50"), Not(Contains(HasSubstr("lost")))));
  ShutDown();
}

TEST(Faults, ADiskThatIsFullOrReadOnlyOrWithoutDescriptorsAtTheStartIsReportedAndTheLayerWorks) {
  if (!MayMount()) GTEST_SKIP() << "needs a mount namespace";
  ExpectTheLayerWorks();  // from here on a start sets everything up, the first capture of a process nothing
  const ptrdiff_t s32Descriptors = OpenDescriptors();
  const auto use = [](uint32_t (*pfnEnd)(), const std::vector<const char *> &errors) {
    const ReportCapture capture;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
    LogError("nowhere");
    Command("kest_log_level=all");
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_SetParameter("kest_print_current_shm"));
    ExpectErrors(capture, {"Err! shared memory initialization fails\n"});
    ExpectErrors(capture, errors);
    EXPECT_EQ(ZE_KEST_OK, pfnEnd());
  };
  {
    const Disk disk(0, "size=16k");
    Disk::Fill();
    use(ShutDown, {"Err! ftruncate fails, errno=No space left on device\n", "Error! Fail to fflush()!\n"});
  }
  {
    const Disk disk(MS_RDONLY, "");
    use(ze_kest_Debug_DeInit,
        {"errno=(30, Read-only file system)\n", "Err! ze_kest_Utility_FileOpen failed!\n",
         "Warn! mkfifo ret = -1 : Read-only file system\n"});
  }
  {
    EmptyDebugDirectory();
    const NoDescriptors none;
    use(ze_kest_Debug_DeInit, {"errno=(24, Too many open files)\n", "Err! ze_kest_Utility_FileOpen failed!\n",
                               "Err! open ret = -1 : Too many open files\n"});
  }
  EXPECT_EQ(s32Descriptors, OpenDescriptors());
  ExpectTheLayerWorks();
}

TEST(Faults, WithoutDescriptorsTheOpenLogGoesOnAndWhatNeedsANewOneIsReported) {
  const DebugLayer layer;
  const ptrdiff_t s32Descriptors = OpenDescriptors();
  const ReportCapture capture;
  {
    const NoDescriptors none;
    LogError("still logged");
    ze_kest_Utility_DumpBuffer(KEST_DEBUG_DIR, "dump", "abc", 3);
    ExpectErrors(capture, {"Err! fopen failed!\n"});
  }
  EXPECT_THAT(ReadFile(kLogFile), HasSubstr("still logged\n"));
  {
    const NoDescriptors none;
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_SetParameter("kest_log_restart"));
    LogError("not logged");
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_SetParameter("kest_log_to_file=on"));
  }
  WriteToPipe("kest_log_to_file=on\nkest_log_size=12345\n");
  EXPECT_TRUE(WaitFor([] { return ReadFile(kLogFile).find("LogSizeMax:12345\n") != std::string::npos; }));
  EXPECT_THAT(ReadFile(kLogFile), Not(HasSubstr("not logged")));
  EXPECT_EQ(s32Descriptors, OpenDescriptors());
}

TEST(Faults, ALogFileThatWasRemovedOrReplacedComesBackWithARestart) {
  const DebugLayer layer;
  const ptrdiff_t s32Descriptors = OpenDescriptors();
  for (const bool bReplaced : {false, true}) {
    const ReportCapture capture(ZE_KEST_LEVEL_ERR);
    fs::rename(kLogFile, KEST_DEBUG_DIR "moved");
    if (bReplaced) WriteFile(kLogFile, "somebody's\n");
    LogError("into the file that is open");
    EXPECT_THAT(ReadFile(KEST_DEBUG_DIR "moved"), EndsWith("into the file that is open\n"));
    EXPECT_EQ(bReplaced ? "somebody's\n" : "", ReadFile(kLogFile));
    Command("kest_log_restart");
    LogError("into the new one");
    EXPECT_THAT(ReadFile(kLogFile), EndsWith("into the new one\n"));
    EXPECT_THAT(capture.Texts("<ERR>"), IsEmpty());
  }
  EXPECT_EQ(s32Descriptors, OpenDescriptors());
}

}  // namespace
}  // namespace kest::test
