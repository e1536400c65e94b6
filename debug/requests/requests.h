// SPDX-License-Identifier: Apache-2.0
// The commands that ask a filter to do something by itself: play a test tone, measure its PCM level or its
// data rate. They only publish the request. ZE_KEST_OK when they took the line.
#pragma once

#include <cstdint>

namespace kest {

// kest_send_test_tone=PIPELINE,FILTER:INPUT_PORT | off. A line of any other command drops the request.
uint32_t _ZE_KEST_Debug_Cmd_SendTestTone(const char *pszLine);

// kest_calpcmlev=PIPELINE,FILTER,CYCLES | off. A line of any other command makes the request, to every
// filter.
uint32_t _ZE_KEST_Debug_Cmd_CalPcmLev(const char *pszLine);

// kest_calculate_data_rate=PIPELINE,FILTER:INPUT_PORT,OUTPUT_PORT | off
uint32_t _ZE_KEST_Debug_Cmd_CalculateDataRate(const char *pszLine);

void ClearTestToneRequest();
void ClearPcmLevelRequest();
void ClearDataRateRequest();

// Clears them all.
void ResetRequests();

}  // namespace kest
