// SPDX-License-Identifier: Apache-2.0
// Compares logging one line to the file with one write of the same bytes and with the obvious implementation.
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "ze_kest/debug.h"

#include "bench/rows.h"
#include "bench/table.h"
#include "utility/core/debug_dir.h"

namespace kest::bench {
namespace {

constexpr const char *kLogPath = KEST_DEBUG_PATH("KestLog.txt");
constexpr const char *kWritePath = KEST_DEBUG_PATH("BenchWrite.txt");
constexpr const char *kObviousPath = KEST_DEBUG_PATH("BenchObvious.txt");
constexpr size_t kLinesPerFile = 200000;  // about when the library restarts its file

void LogLine() {
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "%s[%-4d]: level:%u space:%u\n", "ReadInputPort", 123, 4096u, 256u);
}

off_t LogBytes() {
  struct stat stFile = {};
  return stat(kLogPath, &stFile) == 0 ? stFile.st_size : 0;
}

size_t LineBytes() {
  const off_t s64Before = LogBytes();
  LogLine();
  const off_t s64Line = LogBytes() - s64Before;
  if (s64Line < 60) ReportFault("the log file takes no lines");
  return static_cast<size_t>(s64Line);
}

// Writes the bytes of a line with a single write.
class BareWrite {
 public:
  BareWrite()
      : s32Fd_(open(kWritePath, O_CREAT | O_TRUNC | O_RDWR | O_APPEND | O_CLOEXEC, 0666)),
        text_(LineBytes(), 'x') {
    unlink(kWritePath);
    text_.back() = '\n';
  }
  ~BareWrite() { close(s32Fd_); }
  BareWrite(const BareWrite &) = delete;
  BareWrite &operator=(const BareWrite &) = delete;

  void Line() {
    if (++sztLines_ % kLinesPerFile == 0) Check(ftruncate(s32Fd_, 0) == 0);
    Check(write(s32Fd_, text_.data(), text_.size()) == static_cast<ssize_t>(text_.size()));
  }

 private:
  static void Check(bool bDone) {
    if (!bDone) ReportFault("the file beside the log takes no line");
  }

  int s32Fd_;
  std::string text_;
  size_t sztLines_ = 0;
};

// Writes the same prefix and message as the log, using only the C library.
class Obvious {
 public:
  Obvious() : pFile_(fopen(kObviousPath, "ab+")) {
    if (pFile_ == nullptr) ReportFault("there is no file beside the log");
    unlink(kObviousPath);
  }
  ~Obvious() { fclose(pFile_); }
  Obvious(const Obvious &) = delete;
  Obvious &operator=(const Obvious &) = delete;

  __attribute__((format(printf, 2, 3))) void Line(const char *pszFormat, ...) {
    if (++sztLines_ % kLinesPerFile == 0 && ftruncate(fileno(pFile_), 0) != 0) ReportFault("ftruncate");
    struct timespec stNow = {};
    clock_gettime(CLOCK_REALTIME, &stNow);
    struct tm stLocal = {};
    localtime_r(&stNow.tv_sec, &stLocal);
    char szTime[256];
    snprintf(szTime, sizeof(szTime), "%.2d-%.2d %.2d:%.2d:%.2d.%.3ld", stLocal.tm_mon + 1, stLocal.tm_mday,
             stLocal.tm_hour, stLocal.tm_min, stLocal.tm_sec, stNow.tv_nsec / 1000000);
    fprintf(pFile_, "%s%d %d [%s,%d][%s]<ZE3><%s>%s", "\033[1;31m", getpid(),
            static_cast<int>(syscall(SYS_gettid)), "2023/06/01,01", 0, szTime, "ERR", "\033[0m");
    va_list arguments;
    va_start(arguments, pszFormat);
    vfprintf(pFile_, pszFormat, arguments);
    va_end(arguments);
    fflush(pFile_);
  }

 private:
  FILE *pFile_;
  size_t sztLines_ = 0;
};

}  // namespace

void AddLogRows() {
  const auto bare = std::make_shared<BareWrite>();
  const auto obvious = std::make_shared<Obvious>();
  Row("log, one line (limit: one write of its bytes; plain: fprintf, vfprintf, fflush)")
      .Add("", Who::kLibrary, LogLine)
      .Add("", Who::kLimit, [bare] { bare->Line(); })
      .Add("", Who::kPlain,
           [obvious] { obvious->Line("%s[%-4d]: level:%u space:%u\n", "ReadInputPort", 123, 4096u, 256u); });
}

}  // namespace kest::bench
