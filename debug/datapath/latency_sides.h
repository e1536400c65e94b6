// SPDX-License-Identifier: Apache-2.0
// The two sides of a latency measurement, in a filter's cycle. They do nothing for a filter that is not the
// selected one, and while nothing is measured.
#pragma once

#include "ze_kest/model.h"

namespace kest {

// Silences the inputs of the start filter and writes the burst into them, before the filter reads them.
uint32_t _ZE_KEST_Debug_MeasureLatency_Start(const ZE_KEST_Filter_s *pstFilter);

// Looks for the burst in what the end filter has written, and writes that into a file.
uint32_t _ZE_KEST_Debug_MeasureLatency_Stop(const ZE_KEST_Filter_s *pstFilter);

}  // namespace kest
