// SPDX-License-Identifier: Apache-2.0
// Whatever stands in the places that the library writes to, it holds nothing up and nothing else is written.
#include <atomic>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include "debug/datapath/io_trace.h"
#include "debug/log/log_file.h"
#include "tests/support/library_test.h"

namespace kest::test {
namespace {

namespace fs = std::filesystem;

constexpr const char *kElsewhere = KEST_DEBUG_DIR "elsewhere";

uint32_t AllocateBlock() {
  int s32Fd = -1, s32LockFd = -1;
  void *pv = nullptr;
  return ze_kest_Utility_ShmAlloc("it", &s32Fd, &s32LockFd, &pv);
}

// A use of each file that the library opens, with its answer when something else stands there.
const struct Place {
  const char *pszPath;
  uint32_t (*pfnUse)();
  uint32_t u32Result;
  const char *pszReport;
} kPlaces[] = {
    {kLogFile, _ZE_KEST_Debug_LogRestart, ZE_KEST_FAILED, "Err! fopen failed!\n"},
    {kLogFile, [] { return _ZE_KEST_Debug_SetMode(kLogToFile, 1); }, ZE_KEST_FAILED,
     "Err! ze_kest_Utility_FileOpen failed!\n"},
    {KEST_DEBUG_DIR "it.txt", [] { return _ZE_KEST_Debug_Cmd_Io("kest_debug_filter_io=it"); }, ZE_KEST_FAILED,
     "Err! ze_kest_Utility_FileOpen failed!\n"},
    {KEST_DEBUG_DIR "it", [] { return ze_kest_Utility_DumpBuffer(KEST_DEBUG_DIR, "it", "abc", 3); },
     ZE_KEST_OK, "Err! fopen failed!\n"},
    {KEST_DEBUG_DIR "shm_it", AllocateBlock, ZE_KEST_NOT_INITIALISED,
     "Err! Shm init (" KEST_DEBUG_DIR "shm_it) return -1"},
    {KEST_DEBUG_DIR "shm_flock_it", AllocateBlock, ZE_KEST_NOT_INITIALISED,
     "Err! file lock path " KEST_DEBUG_DIR "shm_flock_it, return -1"},
};

constexpr void (*kThings[])(const char *) = {
    [](const char *pszPath) { ASSERT_EQ(0, mkfifo(pszPath, 0777)); },
    [](const char *pszPath) { fs::create_symlink(kElsewhere, pszPath); },
    [](const char *pszPath) { fs::create_symlink("nowhere", pszPath); },
};

void Replace(const char *pszPath, void (*pfnMake)(const char *)) {
  fs::remove(pszPath);
  pfnMake(pszPath);
}

void ExpectNothingWasWritten(const char *pszPath) {
  EXPECT_EQ("untouched", ReadFile(kElsewhere));
  EXPECT_FALSE(fs::exists(KEST_DEBUG_DIR "nowhere"));
  EXPECT_FALSE(fs::is_regular_file(fs::symlink_status(pszPath))) << pszPath;
}

TEST(Sinks, AFifoOrALinkInTheirPlaceIsRefusedWhereverItIsMet) {
  const DebugLayer layer;
  WriteFile(kElsewhere, "untouched");
  for (const auto &make : kThings) {
    for (const Place &place : kPlaces) {
      const ReportCapture capture;
      Replace(place.pszPath, make);
      EXPECT_EQ(place.u32Result, place.pfnUse()) << place.pszPath;
      EXPECT_TRUE(capture.Has("<ERR>", place.pszReport)) << place.pszReport;
      ExpectNothingWasWritten(place.pszPath);
      fs::remove(place.pszPath);
      Command("kest_debug_filter_io=release,stop");
    }
    // Met by the restart of a log that has grown too long, on a thread that logs.
    Command("kest_log_to_file=on");
    Command("kest_log_size=0");
    Replace(kLogFile, make);
    for (int i = 0; i < 2000; ++i)
      ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%0100d\n", i);
    ExpectNothingWasWritten(kLogFile);
    fs::remove(kLogFile);
    Command("kest_log_size=20000000");
    Command("kest_log_to_file=on");
  }
}

TEST(Sinks, AFifoInTheLogsPlaceAtTheStartHoldsUpNeitherTheStartNorTheEnd) {
  EmptyDebugDirectory();
  ASSERT_EQ(0, mkfifo(kLogFile, 0777));
  ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  for (int i = 0; i < 2000; ++i)
    ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%0100d\n", i);
  EXPECT_EQ(ZE_KEST_OK, ShutDown());
  EXPECT_TRUE(fs::is_fifo(kLogFile));
}

TEST(Sinks, OfTheDevicesOnlyTheOneThatTakesEverythingIsWrittenTo) {
  if (!MayMount()) GTEST_SKIP() << "needs a mount namespace";
  const DebugLayer layer;
  const std::string path = KEST_DEBUG_DIR "device";
  for (const auto &[pszDevice, bTaken] : {std::pair{"/dev/null", true}, std::pair{"/dev/zero", false}}) {
    WriteFile(path, "");
    ASSERT_EQ(0, mount(pszDevice, path.c_str(), nullptr, MS_BIND, nullptr));
    const ReportCapture capture;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_DumpBuffer(KEST_DEBUG_DIR, "device", "abc", 3));
    EXPECT_EQ(bTaken, capture.Texts("<ERR>").empty()) << pszDevice;
    EXPECT_EQ(0, umount2(path.c_str(), MNT_DETACH));
  }
}

// Standard output goes to a channel that nobody reads until the test does.
class StuckOutput {
 public:
  explicit StuckOutput(void (*pfnMake)(int (&)[2])) {
    fflush(stdout);
    int as32Ends[2] = {-1, -1};
    pfnMake(as32Ends);
    s32Reader_ = as32Ends[0];
    fcntl(s32Reader_, F_SETFL, O_NONBLOCK);
    dup2(as32Ends[1], STDOUT_FILENO);
    close(as32Ends[1]);
  }
  ~StuckOutput() {
    dup2(s32Before_, STDOUT_FILENO);
    close(s32Before_);
    close(s32Reader_);
  }
  StuckOutput(const StuckOutput &) = delete;
  StuckOutput &operator=(const StuckOutput &) = delete;

  [[nodiscard]] std::string Read() const {
    std::string text;
    char acPart[4096];
    for (ssize_t s32 = 0; (s32 = read(s32Reader_, acPart, sizeof(acPart))) > 0;)
      text.append(acPart, static_cast<size_t>(s32));
    return text;
  }

 private:
  int s32Before_ = dup(STDOUT_FILENO);
  int s32Reader_ = -1;
};

void MakePipe(int (&as32Ends)[2]) {
  ASSERT_EQ(0, pipe(as32Ends));
}

void MakeSocket(int (&as32Ends)[2]) {
  ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, as32Ends));
}

void MakeTerminal(int (&as32Ends)[2]) {
  as32Ends[0] = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_EQ(0, grantpt(as32Ends[0]) | unlockpt(as32Ends[0]));
  as32Ends[1] = open(ptsname(as32Ends[0]), O_RDWR | O_NOCTTY);
  struct termios stRaw = {};
  ASSERT_EQ(0, tcgetattr(as32Ends[1], &stRaw));
  cfmakeraw(&stRaw);
  ASSERT_EQ(0, tcsetattr(as32Ends[1], TCSANOW, &stRaw));
}

TEST(Sinks, AConsoleThatNobodyReadsLosesLinesSaysHowManyAndHoldsNothingUp) {
  for (const auto &make : {MakePipe, MakeSocket, MakeTerminal}) {
    EmptyDebugDirectory();
    const StuckOutput output(make);
    ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
    _ZE_KEST_Debug_SetMode(kLogToConsole, 1);
    int s32Logged = 0;
    const auto log = [&] { ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "%099d\n", ++s32Logged); };
    const auto isLine = [](const std::string &found) { return found.size() == 99; };
    const auto readToTheEnd = [&] {
      std::string text;
      EXPECT_TRUE(WaitFor([&] {
        log();
        text += output.Read();
        const Texts lines = LinesOf(text);
        return !lines.empty() && isLine(lines.back()) && std::stoi(lines.back()) == s32Logged;
      }));
      return text;
    };
    readToTheEnd();  // what the channel before has lost

    s32Logged = 0;
    while (s32Logged < 5000)
      log();
    EXPECT_EQ(0, fcntl(STDOUT_FILENO, F_GETFL) & O_NONBLOCK);  // it is not this process's alone
    std::string text = output.Read();
    text += readToTheEnd();
    int s32Accounted = 0;
    for (const std::string &found : LinesOf(text)) {
      if (isLine(found)) ++s32Accounted;
      if (found.rfind("Lost lines: ", 0) == 0) s32Accounted += std::stoi(found.substr(12));
    }
    EXPECT_THAT(text, HasSubstr("Lost lines: "));
    // A line of which the newline alone was cut is there and counted as well.
    EXPECT_THAT(s32Accounted - s32Logged, testing::AnyOf(0, 1));

    for (int i = 0; i < 5000; ++i)  // the shut-down meets a stuck channel too
      log();
    EXPECT_EQ(ZE_KEST_OK, ShutDown());
  }
}

TEST(Sinks, NoFileOfTheLibraryTakesThePlaceOfAStandardStreamThatIsClosed) {
  EmptyDebugDirectory();
  EXPECT_EQ(0, InAnotherProcess([] {
              for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd)
                close(fd);
              EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
              WriteToPipe("");
              Command("kest_log_to_print=on");
              Command("kest_log_restart");
              Command("kest_debug_filter_io=pipe");
              EXPECT_EQ(ZE_KEST_OK, AllocateBlock());
              printf("of the process itself\n");
              EXPECT_NE(0, fflush(stdout));
              for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd)
                EXPECT_EQ(-1, fcntl(fd, F_GETFD)) << fd;
              stdout = fopen(kElsewhere, "w");  // on descriptor 0, the first that is free
              ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "at once\n");
              EXPECT_THAT(ReadFile(kElsewhere), HasSubstr("at once\n"));
            }));
}

TEST(Sinks, TheChildOfAForkBesideBusyThreadsLogsAndTakesCommands) {
  constexpr const char *kCommands[] = {"kest_debug_list=print", "kest_log_restart", "kest_print_current_shm",
                                       "kest_log_to_file=on"};
  const DebugLayer layer;
  __android_log_set_logger([](const __android_logger_data *, const char *) {});
  std::atomic<bool> bStop{false};
  std::thread threads([&] {
    InThreads(4, [&](int i) {
      while (!bStop) {
        Command(kCommands[i]);
        ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "parent\n");
      }
    });
  });
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(0, InAnotherProcess([&] {
                alarm(30);
                ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "child\n");
                for (const char *pszCommand : kCommands)
                  Command(pszCommand);
              }));
  }
  bStop = true;
  threads.join();
  __android_log_set_logger(__android_log_stderr_logger);
}

}  // namespace
}  // namespace kest::test
