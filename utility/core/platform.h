// SPDX-License-Identifier: Apache-2.0
// What differs between the target's libc and the development host's.
#pragma once

#include <cstring>

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace kest {

// Older libcs of the target and of the host have no gettid wrapper.
inline pid_t CurrentThreadId() {
  return static_cast<pid_t>(syscall(SYS_gettid));
}

// Both libcs give the variant that returns the text and may leave the buffer alone.
inline const char *ErrorTextInto(int s32Error, char *pszBuf, size_t sztSize) {
#ifdef __BIONIC__
  return __gnu_strerror_r(s32Error, pszBuf, sztSize);
#else
  return strerror_r(s32Error, pszBuf, sztSize);
#endif
}

}  // namespace kest
