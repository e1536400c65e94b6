// SPDX-License-Identifier: Apache-2.0
// The kinds of debug threads; there is at most one of each.
#pragma once

#include <cstdint>

namespace kest {

enum ThreadKind : unsigned int { kCommandThread = 0, kTidTestThread = 1, kSignalTestThread = 2 };

// Creates a debug thread. ZE_KEST_OK also when it already runs or the kind is unknown; ZE_KEST_FAILED when it
// cannot be created; ZE_KEST_NOT_INITIALISED for a test thread while the debug layer is down.
uint32_t _ZE_KEST_Debug_CreateThread(unsigned int u32Index);

}  // namespace kest
