// SPDX-License-Identifier: Apache-2.0
#include "debug/log/console.h"

#include <cstdio>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "debug/log/lost_lines.h"
#include "utility/core/guarded_open.h"

namespace kest {
namespace {

LostLines g_lost;

// Standard output is shared, with its flags, by every process of a terminal or a pipeline: O_NONBLOCK on it
// would surprise them all. Opening it anew gives flags of our own. That is done for every line (three system
// calls more), because a descriptor that is kept would hold a pipe open that the process has closed.
ssize_t WriteAnew(int s32Fd, const LogLine &line) {
  char szPath[sizeof("/proc/thread-self/fd/-2147483648")];
  snprintf(szPath, sizeof(szPath), "/proc/thread-self/fd/%d", s32Fd);
  const int s32Own = AboveStandard(open(szPath, O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (s32Own < 0) return -1;
  const ssize_t s32Written = line.WriteTo(s32Own);
  close(s32Own);
  return s32Written;
}

ssize_t Write(int s32Fd, const LogLine &line) {
  struct stat stFile = {};
  if (fstat(s32Fd, &stFile) != 0) return -1;
  if (S_ISSOCK(stFile.st_mode)) return line.SendTo(s32Fd);
  if (!S_ISREG(stFile.st_mode)) return WriteAnew(s32Fd, line);
  // A disk does not wait for a reader, so what the process has printed itself can go first.
  fflush(stdout);
  return line.WriteTo(s32Fd);
}

}  // namespace

void LogToConsole(const char *pszFormat, va_list arguments) {
  const int s32Fd = fileno_unlocked(stdout);
  if (s32Fd < 0) {  // the process has made standard output a stream in memory
    vprintf(pszFormat, arguments);
    return;
  }
  LogLine line;
  const LostLines::Claim claim = g_lost.Take();
  static_cast<void>(LostLines::Begin(line, claim) && line.AppendList(pszFormat, arguments));
  g_lost.Settle(claim, line, Write(s32Fd, line));
}

}  // namespace kest
