// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/utility.h"

#include "utility/core/report.h"

namespace {

uint32_t OrDefault(uint32_t u32Value, uint32_t u32Default) {
  return u32Value == 0 ? u32Default : u32Value;
}

}  // namespace

uint32_t ze_kest_Utility_BytesPerMs(const ZE_KEST_PcmInfo_s *pstFormat) {
  KEST_REQUIRE_OR(pstFormat != nullptr, 0, "pstFormat is NULL.\n");
  const uint32_t u32Channels = OrDefault(pstFormat->u32TotalChannels, 2);
  const uint32_t u32SampleRate = OrDefault(pstFormat->u32SampleRate, 48000);
  const uint32_t u32Bits = OrDefault(pstFormat->u32BitWidth, 16);
  return u32Bits / 8 * u32Channels * (u32SampleRate / 1000);
}
