// SPDX-License-Identifier: Apache-2.0
// Differences between the C libraries of the target and of the development host.
#pragma once

#include <cstring>

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace kest {

// Older C libraries, on the target and on the host, have no gettid wrapper.
inline pid_t CurrentThreadId() {
  return static_cast<pid_t>(syscall(SYS_gettid));
}

// The GNU variant on both: it returns the text and may leave the buffer unused.
inline const char *ErrorTextInto(int s32Error, char *pszBuf, size_t sztSize) {
#ifdef __BIONIC__
  return __gnu_strerror_r(s32Error, pszBuf, sztSize);
#else
  return strerror_r(s32Error, pszBuf, sztSize);
#endif
}

}  // namespace kest
