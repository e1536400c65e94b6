// SPDX-License-Identifier: Apache-2.0
// Prints the fill state of a filter's ports, one line for each kind of data.
#pragma once

#include "ze_kest/model.h"

namespace kest {

uint32_t _ZE_KEST_Debug_FilterPcmInfo(const ZE_KEST_Filter_s &filter);
uint32_t _ZE_KEST_Debug_FilterMetadataInfo(const ZE_KEST_Filter_s &filter);
uint32_t _ZE_KEST_Debug_FilterRawInfo(const ZE_KEST_Filter_s &filter);

// Prints the three lines, for every filter, while they are switched on. The first failure,
// ZE_KEST_OUT_OF_MEMORY, ends them.
uint32_t PrintPortLines(const ZE_KEST_Filter_s *pstFilter);

}  // namespace kest
