// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/latency.h"

#include "ze_kest/debug.h"

#include "debug/datapath/latency_sides.h"

int32_t ze_kest_Debug_MeasureLatency(const ZE_KEST_Filter_s *pstFilter, uint32_t u32Kind) {
  switch (u32Kind) {
    case ZE_KEST_LATENCY_START:
      return static_cast<int32_t>(kest::_ZE_KEST_Debug_MeasureLatency_Start(pstFilter));
    case ZE_KEST_LATENCY_END:
      return static_cast<int32_t>(kest::_ZE_KEST_Debug_MeasureLatency_Stop(pstFilter));
    default:
      return ZE_KEST_OK;
  }
}
