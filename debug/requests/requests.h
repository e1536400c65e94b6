// SPDX-License-Identifier: Apache-2.0
// The commands that publish a request for the framework's filters or for the performance measurement.
// ZE_KEST_OK when they took the line.
#pragma once

#include <cstdint>

namespace kest {

// kest_perf_event_target=pipeline,PIPELINE | filter,PIPELINE:FILTER | none: what the performance measurement
// watches. A line of any other command drops the target.
uint32_t _ZE_KEST_Debug_Cmd_SetPerfEventTarget(const char *pszLine);

// kest_process_status=pipeline,PIPELINE | filter,PIPELINE:FILTER | none: who reports its processing status. A
// line of any other command drops the query.
uint32_t _ZE_KEST_Debug_Cmd_QueryProcessStatus(const char *pszLine);

// kest_send_test_tone=PIPELINE,FILTER:INPUT_PORT | off. A line of any other command drops the request.
uint32_t _ZE_KEST_Debug_Cmd_SendTestTone(const char *pszLine);

// kest_calpcmlev=PIPELINE,FILTER,CYCLES | off. A line of any other command makes the request, to every
// filter.
uint32_t _ZE_KEST_Debug_Cmd_CalPcmLev(const char *pszLine);

// kest_calculate_data_rate=PIPELINE,FILTER:INPUT_PORT,OUTPUT_PORT | off
uint32_t _ZE_KEST_Debug_Cmd_CalculateDataRate(const char *pszLine);

// Takes every request back.
void ResetRequests();

}  // namespace kest
