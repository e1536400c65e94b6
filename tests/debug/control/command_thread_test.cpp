// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <ctime>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "debug/control/create_thread.h"
#include "tests/support/library_test.h"
#include "tests/support/refused_open.h"

namespace kest::test {
namespace {

// How often the command thread has gone to sleep.
int64_t Sleeps() {
  for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
    if (ReadFile(task.path() / "comm") != "KestDebug\n") continue;
    const std::string status = ReadFile(task.path() / "status");
    const std::string field = "\nvoluntary_ctxt_switches:";
    return std::stoll(status.substr(status.find(field) + field.size()));
  }
  return -1;
}

// Whether it comes to sleep for most of a while, without a run in between that takes long.
bool SleepsAtMost(int64_t s64Times) {
  for (int i = 0; i < 5; ++i) {
    const int64_t s64Before = Sleeps();
    EXPECT_LE(0, s64Before);
    const clock_t s64Worked = clock();
    usleep(1200000);
    if (Sleeps() <= s64Before + s64Times && clock() - s64Worked < CLOCKS_PER_SEC / 20) return true;
  }
  return false;
}

}  // namespace

// What the thread reports of a line that nothing has taken.
constexpr const char *kRefused = "Err! SetParameter failed(0x8)!\n";

TEST(CommandThread, ALineOfThePipeIsCarriedOutThoughItComesInPiecesFromSeveralWriters) {
  const DebugLayer layer;
  const ReportCapture capture;
  WriteToPipe("kest_log_level=wrn\nkest_at");
  WriteToPipe("race=");
  WriteToPipe("on\n");
  EXPECT_TRUE(WaitFor([&] { return capture.Has("<PRINT>", "kest_atrace=on\n"); }));
  EXPECT_EQ(ZE_KEST_LEVEL_WRN, __atomic_load_n(&u32KestDebugLevel, __ATOMIC_RELAXED));
  EXPECT_TRUE(WaitFor([] { return __atomic_load_n(&bKestAtraceEnable, __ATOMIC_RELAXED) == 1; }));
}

// As it is for whoever does not own the pipe.
TEST(CommandThread, ReadsAPipeThatItMayNotOpenWithoutAccessTimes) {
  const RefusedOpen refused(O_NOATIME);
  const DebugLayer layer;
  const ReportCapture capture;
  WriteToPipe("kest_log_size=55\n");
  EXPECT_TRUE(WaitFor([&] { return capture.Has("<PRINT>", "LogSizeMax:55\n"); }));
  EXPECT_EQ(1, RefusedOpen::Count());
}

TEST(CommandThread, ALongLineIsCutAt127BytesLosesOneByteAndGoesOnAsTheNextLine) {
  const DebugLayer layer;
  const ReportCapture capture;
  const std::string filler(106, ',');  // "kest_log_size=1234567" and the filler make 127 bytes
  const std::string line = "kest_log_size=1234567" + filler;
  ASSERT_EQ(127u, line.size());
  WriteToPipe(line.substr(0, 126) + "\n");    // 126 bytes: whole
  WriteToPipe(line + "\n");                   // 127 bytes: whole, its newline is the 128th
  WriteToPipe(line + "kest_log_size=89\n");   // the "k" is lost, "est_log_size=89" is no command
  WriteToPipe(line + "?kest_log_size=77\n");  // the "?" is lost, the rest is a command
  EXPECT_TRUE(WaitFor([&] { return capture.Has("<PRINT>", "LogSizeMax:77\n"); }));
  EXPECT_FALSE(capture.Has("<PRINT>", "LogSizeMax:89\n"));
  EXPECT_EQ(1, capture.Count("<ERR>", kRefused));
  EXPECT_EQ(4, capture.Count("<PRINT>", "LogSizeMax:1234567\n"));
}

TEST(CommandThread, EmptyLinesRubbishAndEndlessLinesAreRefusedAndTheNextCommandWorks) {
  const DebugLayer layer;
  const ReportCapture capture;
  std::string rubbish = "\n";
  for (int i = 0; i < 256; ++i)
    rubbish += static_cast<char>(i);
  WriteToPipe(rubbish + "\n");
  WriteToPipe(std::string(300, 'x') + "\n");
  WriteToPipe("%s%n%s%n\n");
  WriteToPipe("kest_log_size=55\n");
  EXPECT_TRUE(WaitFor([&] { return capture.Has("<PRINT>", "LogSizeMax:55\n"); }));
  // One empty, the rubbish (its newline makes two, its length three), three of the x, one of conversions.
  EXPECT_EQ(8, capture.Count("<ERR>", kRefused));
}

TEST(CommandThread, SleepsUntilThereIsALine) {
  { const DebugLayer before; }
  const DebugLayer layer;
  EXPECT_TRUE(SleepsAtMost(0));
}

TEST(CommandThread, HardlyEverLooksForAProcessThatStoppedInTheMiddleOfALine) {
  const DebugLayer layer;
  const ReportCapture capture;
  const int s32Other = open(kPipe, O_RDWR | O_NONBLOCK);
  ASSERT_EQ(0, flock(s32Other, LOCK_EX));
  WriteToPipe("kest_log_size=66\n");
  EXPECT_TRUE(SleepsAtMost(20));
  EXPECT_FALSE(capture.Has("<PRINT>", "LogSizeMax:66\n"));
  close(s32Other);
  EXPECT_TRUE(WaitFor([&] { return capture.Has("<PRINT>", "LogSizeMax:66\n"); }));
}

TEST(CommandThread, APipeThatFailsIsReportedAndEndsTheThread) {
  const DebugLayer layer;
  const ReportCapture capture;
  const int s32Other = open(kPipe, O_RDWR | O_NONBLOCK);
  ASSERT_EQ(0, flock(s32Other, LOCK_EX));  // so that the thread looks again and again
  WriteToPipe("kest_log_size=66\n");
  // Not closed: the thread closes its descriptor itself, which may then be another's.
  const int s32Unreadable = open("/dev/null", O_WRONLY);
  std::error_code error;
  for (int fd = 3; fd < 256; ++fd) {
    const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd), error);
    // Past the thread sanitizer, which knows no descriptor that two threads use.
    if (fd != s32Other && path == kPipe) syscall(SYS_dup3, s32Unreadable, fd, 0);
  }
  EXPECT_TRUE(WaitFor([&] { return capture.Has("<ERR>", "Err! read ret = -1 : Bad file descriptor\n"); }));
  EXPECT_TRUE(WaitFor([] { return ThreadsNamed("KestDebug") == 0; }));
  close(s32Unreadable);
  close(s32Other);
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_CreateThread(kCommandThread));  // which takes the ended one's place
  EXPECT_EQ(1, ThreadsNamed("KestDebug"));
}

TEST(CommandThread, AShutDownCountsTheLineThatAnotherProcessIsReading) {
  const DebugLayer layer;
  const ReportCapture capture;
  const int s32Other = open(kPipe, O_RDWR | O_NONBLOCK);
  ASSERT_EQ(0, flock(s32Other, LOCK_EX));
  WriteToPipe("kest_log_size=66\n");
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_DeInit());
  EXPECT_FALSE(capture.Has("<PRINT>", "LogSizeMax:66\n"));
  EXPECT_FALSE(capture.Has("<ERR>", kRefused));
  close(s32Other);
}

}  // namespace kest::test
