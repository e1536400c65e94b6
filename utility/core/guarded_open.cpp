// SPDX-License-Identifier: Apache-2.0
#include "utility/core/guarded_open.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace kest {
namespace {

// Keeps the error for the caller.
void CloseAfter(int s32Error, int s32Fd) {
  close(s32Fd);
  errno = s32Error;
}

bool IsOfKind(int s32Fd, FileKind eKind) {
  struct stat stFile = {};
  if (eKind == FileKind::kAny) return true;
  if (fstat(s32Fd, &stFile) != 0) return false;
  if (S_ISREG(stFile.st_mode)) return true;
  return eKind == FileKind::kSink && S_ISCHR(stFile.st_mode) && stFile.st_rdev == makedev(1, 3);
}

}  // namespace

int AboveStandard(int s32Fd) {
  if (s32Fd < 0 || s32Fd > STDERR_FILENO) return s32Fd;
  const int s32Above = fcntl(s32Fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  CloseAfter(errno, s32Fd);
  return s32Above;
}

int OpenGuarded(const char *pszPath, FileKind eKind, int s32Flags, mode_t u32Mode) {
  // O_NONBLOCK: the open itself must not wait for the other end of a pipe. It changes nothing for a file.
  const int s32Fd =
      AboveStandard(open(pszPath, s32Flags | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, u32Mode));
  if (s32Fd < 0 || IsOfKind(s32Fd, eKind)) return s32Fd;
  CloseAfter(EINVAL, s32Fd);
  return -1;
}

FILE *OpenSink(const char *pszPath, int s32Start) {
  const int s32Fd = OpenGuarded(pszPath, FileKind::kSink, O_RDWR | O_CREAT | s32Start, 0666);
  if (s32Fd < 0) return nullptr;
  FILE *pFile = fdopen(s32Fd, s32Start == O_APPEND ? "ab+" : "wb+");
  if (pFile == nullptr) CloseAfter(errno, s32Fd);
  return pFile;
}

}  // namespace kest
