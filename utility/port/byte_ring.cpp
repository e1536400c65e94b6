// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/port.h"

#include "utility/port/ring_to_ring.h"

uint32_t ze_kest_Utility_CopyFromRingToRingBuffer(uint8_t *pu8Dst, uint32_t sztDstSize, uint32_t sztDstOffset,
                                                  uint32_t sztDstAdvance, const uint8_t *pu8Src,
                                                  uint32_t sztSrcSize, uint32_t sztSrcOffset,
                                                  uint32_t sztSrcAdvance, uint32_t sztCount) {
  kest::CopyRingToRing({pu8Dst, sztDstSize, kest::WrapOnce(sztDstOffset + sztDstAdvance, sztDstSize), 1},
                       {pu8Src, sztSrcSize, kest::WrapOnce(sztSrcOffset + sztSrcAdvance, sztSrcSize), 1},
                       sztCount);
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_CopyFromRingToNonRingBuffer(uint8_t *pu8Dst, const uint8_t *pu8Ring,
                                                     uint32_t sztRingSize, uint32_t sztOffset,
                                                     uint32_t sztAdvance, uint32_t sztCount) {
  // The linear buffer acts as a ring of exactly sztCount bytes, which therefore never wraps.
  return ze_kest_Utility_CopyFromRingToRingBuffer(pu8Dst, sztCount, 0, 0, pu8Ring, sztRingSize, sztOffset,
                                                  sztAdvance, sztCount);
}
