// SPDX-License-Identifier: Apache-2.0
// Opens files in a directory where others may have put anything.
#pragma once

#include <cstdio>

#include <sys/types.h>

namespace kest {

enum class FileKind {
  kAny,
  kRegular,
  kSink  // what output may go to: a regular file or /dev/null
};

// open(), except that it never waits, does not follow a symbolic link in the last component, refuses other
// kinds of files (EINVAL) and yields a descriptor above the standard ones, closed on exec. -1 with errno.
int OpenGuarded(const char *pszPath, FileKind eKind, int s32Flags, mode_t u32Mode = 0);

// Opens or creates a sink for reading and writing. s32Start: O_APPEND to write behind what it holds, O_TRUNC
// to empty it. NULL with errno.
FILE *OpenSink(const char *pszPath, int s32Start);

// Moves a descriptor of 0 to 2 above them: a process that was started without its standard descriptors would
// print into whatever takes their place. Closes the descriptor and returns -1 with errno when it cannot.
int AboveStandard(int s32Fd);

}  // namespace kest
