// SPDX-License-Identifier: Apache-2.0
// One line for each kind of data with the fill state of a filter's ports.
#pragma once

#include "ze_kest/model.h"

namespace kest {

uint32_t _ZE_KEST_Debug_FilterPcmInfo(const ZE_KEST_Filter_s &filter);
uint32_t _ZE_KEST_Debug_FilterMetadataInfo(const ZE_KEST_Filter_s &filter);
uint32_t _ZE_KEST_Debug_FilterRawInfo(const ZE_KEST_Filter_s &filter);

// The three lines, of every filter, as long as they are switched on. ZE_KEST_OUT_OF_MEMORY ends them.
uint32_t PrintPortLines(const ZE_KEST_Filter_s *pstFilter);

}  // namespace kest
