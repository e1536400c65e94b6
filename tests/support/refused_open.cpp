// SPDX-License-Identifier: Apache-2.0
// The linker gives the library's calls of open to the __wrap_ function.
#include "tests/support/refused_open.h"

#include <cerrno>

#include <sys/types.h>

namespace kest::test {

bool RefusedOpen::Refuses(int s32Flags) {
  if ((s32Flags & s32Refused_) == 0) return false;
  ++s32Count_;
  errno = EPERM;
  return true;
}

}  // namespace kest::test

extern "C" {

int __real_open(const char *pszPath, int s32Flags, mode_t u32Mode);
// Of callers without a mode it is not used.
int __wrap_open(const char *pszPath, int s32Flags, mode_t u32Mode) {
  return kest::test::RefusedOpen::Refuses(s32Flags) ? -1 : __real_open(pszPath, s32Flags, u32Mode);
}

}  // extern "C"
