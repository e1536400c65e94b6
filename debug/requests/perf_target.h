// SPDX-License-Identifier: Apache-2.0
// The command that selects what the performance measurement watches.
#pragma once

#include <cstdint>

namespace kest {

// kest_perf_event_target=pipeline,PIPELINE | filter,PIPELINE:FILTER | none
// Returns ZE_KEST_OK when it handled the line. Any other command drops the target.
uint32_t _ZE_KEST_Debug_Cmd_SetPerfEventTarget(const char *pszLine);

void ResetPerfEventTarget();

}  // namespace kest
