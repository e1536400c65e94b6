// SPDX-License-Identifier: Apache-2.0
// Measures the delay between the input of one filter and the output of another.
#pragma once

#include <cstdint>

namespace kest {

// kest_latency_start_filter=PIPELINE,FILTER  kest_latency_end_filter=PIPELINE,FILTER
// kest_latency_config=PIPELINE,FILTER,PIPELINE,FILTER  kest_latency=on|off
// ZE_KEST_OK when it took the line.
uint32_t _ZE_KEST_Debug_Cmd_MeasureLatency(const char *pszLine);

// Switches the measurement off, selects every filter at both ends and restarts the numbering at 0.
void ResetLatency();

}  // namespace kest
