// SPDX-License-Identifier: Apache-2.0
// Start and stop of the debug layer.
#pragma once

#include <cstdint>

namespace kest {

// Base initialisation: the mutexes, the shared settings, everything off. Runs once, from any thread's first
// log line, and again only through ze_kest_Debug_Init after a shut-down. Starts neither the command thread
// nor the log file.
void _ZE_KEST_Debug_Init();

// Between ze_kest_Debug_Init and ze_kest_Debug_DeInit. Any thread.
bool IsStarted();

// Milliseconds; "kest_monitor_sleep_time" sets it and nothing in the library sleeps by it.
void SetMonitorSleepTime(int32_t s32Ms);

}  // namespace kest
