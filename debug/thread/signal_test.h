// SPDX-License-Identifier: Apache-2.0
// A hand-over through a condition between whoever carries out commands and a thread that waits for them.
#pragma once

#include "debug/control/debug_thread.h"

namespace kest {

extern DebugThread _stKestDebugPthreadSignalTest;

// To its state at the start of the debug layer.
void ResetSignalTest();

// Lets the thread run without a pause, from now on; failing calls are reported under the function's name.
void LetSignalTestRun(const char *pszCaller);

// From now on the thread waits in every round.
void LetSignalTestWait();

// Clears the running flag and wakes the thread, which then ends.
void StopSignalTest();

}  // namespace kest
