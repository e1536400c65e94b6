// SPDX-License-Identifier: Apache-2.0
// Writes a sine over what a selected filter wrote to its first output port.
#pragma once

#include "debug/datapath/filter_selection.h"

namespace kest {

extern FilterSelection _stKestSineSelection;

uint32_t _ZE_KEST_Debug_OutputSineWave(const ZE_KEST_Filter_s *pstFilter);

// The next sine begins with the table's first sample.
void RestartSine();

}  // namespace kest
