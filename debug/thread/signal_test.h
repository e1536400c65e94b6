// SPDX-License-Identifier: Apache-2.0
// A test of signalling through a condition: a thread that waits until a command lets it run.
#pragma once

#include "debug/base/debug_thread.h"

namespace kest {

extern DebugThread _stKestDebugPthreadSignalTest;

// Restores the state at the start of the debug layer.
void ResetSignalTest();

// From now on the thread runs without a pause. Failing calls are reported under pszCaller.
void LetSignalTestRun(const char *pszCaller);

// From now on the thread waits in every round.
void LetSignalTestWait();

// Clears the running flag and wakes the thread, which then ends.
void StopSignalTest();

}  // namespace kest
