// SPDX-License-Identifier: Apache-2.0
// Overwrites what a selected filter wrote to its first output port with a sine.
#pragma once

#include "debug/datapath/filter_selection.h"

namespace kest {

extern FilterSelection _stKestSineSelection;

uint32_t _ZE_KEST_Debug_OutputSineWave(const ZE_KEST_Filter_s *pstFilter);

// Makes the sine begin with the table's first sample again.
void RestartSine();

}  // namespace kest
