// SPDX-License-Identifier: Apache-2.0
// What the start of the debug layer sets beside its parts.
#pragma once

#include <cstdint>

namespace kest {

// In milliseconds, 2000 after a start. "kest_monitor_sleep_time" sets it; nothing in the library sleeps by
// it.
extern int32_t s32KestMonitorSleepTimeMs;
void SetMonitorSleepTime(int32_t s32Ms);

}  // namespace kest
