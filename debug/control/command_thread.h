// SPDX-License-Identifier: Apache-2.0
// The thread that reads commands from the pipe "D"; one per process.
#pragma once

#include <cstdint>

namespace kest {

// Starts the thread. ZE_KEST_OK also when it already runs; ZE_KEST_FAILED when it cannot be created.
uint32_t CreateCommandThread();

// Ends the command thread and waits for it. The thread notices only after the next line from the pipe, or
// once the pipe has been removed. Returns at once when the thread was never created or found no pipe.
void _ZE_KEST_Debug_DestroyThread();

}  // namespace kest
