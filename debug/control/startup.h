// SPDX-License-Identifier: Apache-2.0
// Start and stop of the debug layer.
#pragma once

#include <cstdint>

namespace kest {

// Base initialisation: sets up the mutexes and the shared settings and switches everything off. Runs once, at
// the first log line of any thread; after a shut-down, again only through ze_kest_Debug_Init. Starts neither
// the command thread nor the log file.
void _ZE_KEST_Debug_Init();

// In milliseconds. "kest_monitor_sleep_time" sets it; nothing in the library sleeps by it.
void SetMonitorSleepTime(int32_t s32Ms);

}  // namespace kest
