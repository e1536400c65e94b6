// SPDX-License-Identifier: Apache-2.0
// The thread that logs by itself at intervals, so that the watch list can be seen at work.
#pragma once

#include "debug/control/debug_thread.h"

namespace kest {

extern DebugThread _stKestDebugTidTest;

// Milliseconds between two lines, 5000 after each call of ResetTidTest.
extern int32_t s32KestDebugTidTestDelayMs;

// To its state at the start of the debug layer.
void ResetTidTest();

// Clears the running flag and wakes the thread, which then ends.
void StopTidTest();

}  // namespace kest
