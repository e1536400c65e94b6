// SPDX-License-Identifier: Apache-2.0
// Commands that deal with threads. ZE_KEST_OK when they took the line.
#pragma once

#include <cstdint>

namespace kest {

// kest_debug_watch_current_tids=on | off
uint32_t _ZE_KEST_Debug_Cmd_WatchCurrentTids(const char *pszLine);

// kest_debug_watch_tid=TID,TID... and kest_debug_watch=create_test
uint32_t _ZE_KEST_Debug_Cmd_WatchTid(const char *pszLine);

// kest_pthread_signal=create_test and kest_pthread_signal_test=run | wait
uint32_t _ZE_KEST_Debug_Cmd_PthreadSignal(const char *pszLine);

}  // namespace kest
