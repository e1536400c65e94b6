// SPDX-License-Identifier: Apache-2.0
// Start and end of the two test threads, callable from any thread. No test thread outlives the debug layer.
#pragma once

#include <cstdint>

namespace kest {

// ZE_KEST_OK also when the thread already runs. ZE_KEST_FAILED when it cannot be created: the process needs
// the right to run threads round robin. ZE_KEST_NOT_INITIALISED between EndTestThreads and ResetTestThreads.
uint32_t CreateTidTestThread();
uint32_t CreateSignalTestThread();

// Called at the start of the debug layer, when no test thread runs.
void ResetTestThreads();

// Stops both threads and joins them. None can be created until the next ResetTestThreads.
void EndTestThreads();

}  // namespace kest
