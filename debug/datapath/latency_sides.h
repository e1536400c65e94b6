// SPDX-License-Identifier: Apache-2.0
// The two ends of a latency measurement, called in a filter's cycle. They do nothing for a filter that is not
// selected or while no measurement runs.
#pragma once

#include "ze_kest/model.h"

namespace kest {

// Silences the inputs of the start filter and writes the burst into them, before the filter reads them.
uint32_t _ZE_KEST_Debug_MeasureLatency_Start(const ZE_KEST_Filter_s *pstFilter);

// Searches the end filter's output for the burst and appends that output to a file.
uint32_t _ZE_KEST_Debug_MeasureLatency_Stop(const ZE_KEST_Filter_s *pstFilter);

}  // namespace kest
