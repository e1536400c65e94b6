// SPDX-License-Identifier: Apache-2.0
// Rows for the command pipe: what a line costs its thread, and how a flood of lines affects processing
// threads.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "ze_kest/debug.h"

#include "bench/block.h"
#include "bench/rows.h"
#include "debug/control/dispatcher.h"
#include "utility/core/debug_dir.h"

namespace {

std::atomic<uint32_t> g_u32Lines{0};  // passed to the dispatcher by the command thread
std::atomic<bool> g_bDispatch{true};

}  // namespace

// The linker redirects calls of the dispatcher here (--wrap), so that a line can end here when the reader is
// measured alone.
extern "C" uint32_t __real__ZE_KEST_Debug_SetParameter(const char *pszLine);
extern "C" uint32_t __wrap__ZE_KEST_Debug_SetParameter(const char *pszLine) {
  const uint32_t u32Result = g_bDispatch ? __real__ZE_KEST_Debug_SetParameter(pszLine) : uint32_t{ZE_KEST_OK};
  ++g_u32Lines;
  return u32Result;
}

namespace kest::bench {
namespace {

using namespace std::chrono_literals;

constexpr char kLine[] = "no_such_command=1,2\n";  // 20 bytes; no command or handler takes it
constexpr size_t kLineBytes = sizeof(kLine) - 1;
constexpr uint32_t kLines = 3000;  // all of them fit into the pipe

double Now(clockid_t clock) {
  struct timespec st = {};
  clock_gettime(clock, &st);
  return static_cast<double>(st.tv_sec) + static_cast<double>(st.tv_nsec) * 1e-9;
}

// The CPU-time clock of a thread of this process. The kernel derives its id from the thread id in this way.
clockid_t ClockOfThread(pid_t s32Tid) {
  return static_cast<clockid_t>(~static_cast<unsigned int>(s32Tid) << 3 | 6);
}

pid_t CommandThread() {
  const std::unique_ptr<DIR, int (*)(DIR *)> tasks(opendir("/proc/self/task"), closedir);
  while (const dirent *pstEntry = readdir(tasks.get())) {
    const std::string path = std::string("/proc/self/task/") + pstEntry->d_name + "/comm";
    char szName[32] = {};
    const int s32Fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (s32Fd < 0) continue;
    const bool bRead = read(s32Fd, szName, sizeof(szName) - 1) > 0;
    close(s32Fd);
    if (bRead && strcmp(szName, "KestDebug\n") == 0) return std::stoi(pstEntry->d_name);
  }
  ReportFault("there is no command thread");
  return 0;
}

class Pipe {
 public:
  Pipe() : s32Fd_(open(KEST_DEBUG_PATH("D"), O_RDWR | O_CLOEXEC)) {}
  ~Pipe() { close(s32Fd_); }
  Pipe(const Pipe &) = delete;
  Pipe &operator=(const Pipe &) = delete;

  void Send() const {
    if (write(s32Fd_, kLine, kLineBytes) != static_cast<ssize_t>(kLineBytes)) ReportFault("a line was cut");
  }

  // The command thread reads a line only if it can lock the pipe, so it waits while this holds the lock.
  void Hold() const { flock(s32Fd_, LOCK_EX); }
  void Release() const { flock(s32Fd_, LOCK_UN); }

 private:
  int s32Fd_;
};

// Waits until the command thread has dispatched this many lines.
void WaitForLines(uint32_t u32Lines) {
  const auto deadline = std::chrono::steady_clock::now() + 20s;
  while (g_u32Lines != u32Lines) {
    if (std::chrono::steady_clock::now() > deadline) return ReportFault("lines of the pipe were lost");
    std::this_thread::sleep_for(100us);
  }
}

class FileLogOff {
 public:
  FileLogOff() { ze_kest_Debug_SetParameter("kest_log_to_file=off"); }
  ~FileLogOff() { ze_kest_Debug_SetParameter("kest_log_to_file=on"); }
  FileLogOff(const FileLogOff &) = delete;
  FileLogOff &operator=(const FileLogOff &) = delete;
};

// CPU time that the command thread needs per line. The pipe is filled beforehand, so nobody writes to it
// meanwhile.
double SecondsPerLine(bool bDispatch) {
  const FileLogOff off;
  const Pipe pipe;
  const clockid_t clock = ClockOfThread(CommandThread());
  g_bDispatch = bDispatch;
  g_u32Lines = 0;
  pipe.Hold();
  for (uint32_t i = 0; i < kLines; ++i)
    pipe.Send();
  const double f64Start = Now(clock);
  pipe.Release();
  WaitForLines(kLines);
  const double f64Seconds = Now(clock) - f64Start;
  g_bDispatch = true;
  return f64Seconds / kLines;
}

// The minimum cost of reading a line byte by byte.
double SecondsOfBareReads() {
  int as32Fd[2] = {};
  if (pipe(as32Fd) != 0) return 0;
  for (uint32_t i = 0; i < kLines; ++i)
    if (write(as32Fd[1], kLine, kLineBytes) < 0) ReportFault("a pipe holds less");
  const double f64Start = Now(CLOCK_THREAD_CPUTIME_ID);
  char cByte = 0;
  for (size_t i = 0; i < kLines * kLineBytes; ++i)
    if (read(as32Fd[0], &cByte, 1) != 1) ReportFault("a pipe loses bytes");
  const double f64Seconds = Now(CLOCK_THREAD_CPUTIME_ID) - f64Start;
  close(as32Fd[0]);
  close(as32Fd[1]);
  return f64Seconds / kLines;
}

// Runs the cycles of a processing thread and returns how late each one finished, in seconds after it was due.
std::vector<double> Cycles() {
  constexpr int kCycles = 200;
  Block block({10, 256}, {false, false}, sizeof(int16_t));
  std::vector<double> late;
  auto due = std::chrono::steady_clock::now();
  for (int i = 0; i < kCycles; ++i) {
    std::this_thread::sleep_until(due += 1ms);
    ze_kest_Utility_ReadInputPortPcmBuffer(block.Filter(), 0, block.Frames(), 256, block.FirstChannel(),
                                           block.LastChannel(), 10);
    ze_kest_Debug_Filter(block.Filter());
    late.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - due).count());
  }
  return late;
}

// The 99th percentile of the lateness of two processing threads, in seconds.
double LatenessOfTwoThreads() {
  std::vector<double> other;
  std::thread thread([&other] { other = Cycles(); });
  std::vector<double> late = Cycles();
  thread.join();
  late.insert(late.end(), other.begin(), other.end());
  const auto place = late.begin() + static_cast<ptrdiff_t>(late.size() * 99 / 100);
  std::nth_element(late.begin(), place, late.end());
  return *place;
}

double LatenessUnderFlood() {
  const FileLogOff off;
  std::atomic<bool> bFlood{true};
  std::atomic<uint32_t> u32Sent{0};
  g_u32Lines = 0;
  std::thread flood([&] {
    const Pipe pipe;
    for (; bFlood; ++u32Sent)
      pipe.Send();
  });
  const double f64Late = LatenessOfTwoThreads();
  bFlood = false;
  flood.join();
  WaitForLines(u32Sent);
  return f64Late;
}

}  // namespace

void AddCommandRows() {
  Row("command pipe, 20 bytes read (limit: 20 reads of a byte)")
      .AddTimed(Who::kLibrary, [] { return SecondsPerLine(false); })
      .AddTimed(Who::kLimit, SecondsOfBareReads);
  Row("command pipe, 20 bytes read (limit: 6 us)")
      .AddTimed(Who::kLibrary, [] { return SecondsPerLine(false); })
      .AddTimed(Who::kLimit, [] { return 6e-6; });
  Row("command pipe, 20 bytes through all handlers (limit: 40 us)")
      .AddTimed(Who::kLibrary, [] { return SecondsPerLine(true); })
      .AddTimed(Who::kLimit, [] { return 40e-6; });
  Row("lateness of 1 of 100 cycles under a flood of commands (limit: without)")
      .AddTimed(Who::kLibrary, LatenessUnderFlood)
      .AddTimed(Who::kLimit, LatenessOfTwoThreads);
}

}  // namespace kest::bench
