// SPDX-License-Identifier: Apache-2.0
// Owns a block allocated by the library and releases it on every path.
#pragma once

#include <memory>

#include "ze_kest/utility.h"

namespace kest {

struct ReleaseMemory {
  void operator()(void *pv) const { ze_kest_Utility_MemoryFree(&pv); }
};

template <typename T>
using Owned = std::unique_ptr<T, ReleaseMemory>;

// Uninitialised memory for one T, or for a buffer of sztBytes; empty when memory is exhausted.
template <typename T>
Owned<T> Allocate(size_t sztBytes = sizeof(T)) {
  void *pv = nullptr;
  ze_kest_Utility_MemoryAlloc(&pv, sztBytes);
  return Owned<T>(static_cast<T *>(pv));
}

// A modifiable copy of a text; empty when memory is exhausted.
inline Owned<char> Duplicate(const char *psz) {
  return Owned<char>(ze_kest_Utility_Strdup(psz));
}

}  // namespace kest
