// SPDX-License-Identifier: Apache-2.0
// A test thread that logs at intervals, so that the effect of the watch list can be seen.
#pragma once

#include "debug/base/debug_thread.h"

namespace kest {

extern DebugThread _stKestDebugTidTest;

// Milliseconds between two lines; ResetTidTest sets it to 5000.
extern int32_t s32KestDebugTidTestDelayMs;

// Restores the state at the start of the debug layer.
void ResetTidTest();

// Clears the running flag and wakes the thread, which then ends.
void StopTidTest();

}  // namespace kest
