// SPDX-License-Identifier: Apache-2.0
// The thread that reads commands from the pipe "D", one per process.
#pragma once

#include <cstdint>

namespace kest {

// ZE_KEST_OK also when it runs already; ZE_KEST_FAILED when it cannot be created.
uint32_t CreateCommandThread();

// Ends the command thread and waits for it: it notices after the next line of the pipe, or that the pipe was
// removed. Returns at once when it was never created or has found no pipe.
void _ZE_KEST_Debug_DestroyThread();

}  // namespace kest
