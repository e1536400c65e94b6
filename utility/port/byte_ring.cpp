// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstring>

#include "ze_kest/utility.h"

#include "utility/port/ring_position.h"

uint32_t ze_kest_Utility_CopyFromRingToRingBuffer(uint8_t *pu8Dst, uint32_t sztDstSize, uint32_t sztDstOffset,
                                                  uint32_t sztDstAdvance, const uint8_t *pu8Src,
                                                  uint32_t sztSrcSize, uint32_t sztSrcOffset,
                                                  uint32_t sztSrcAdvance, uint32_t sztCount) {
  uint32_t u32Dst = kest::WrapOnce(sztDstOffset + sztDstAdvance, sztDstSize);
  uint32_t u32Src = kest::WrapOnce(sztSrcOffset + sztSrcAdvance, sztSrcSize);
  if (u32Dst > sztDstSize || u32Src > sztSrcSize) return ZE_KEST_OK;

  // Each piece ends where either ring ends or the amount does: three at most, as neither ring is lapped.
  uint32_t u32Left = std::min({sztCount, sztDstSize, sztSrcSize});
  while (u32Left != 0) {
    if (u32Dst == sztDstSize) u32Dst = 0;
    if (u32Src == sztSrcSize) u32Src = 0;
    const uint32_t u32Piece = std::min({u32Left, sztDstSize - u32Dst, sztSrcSize - u32Src});
    memcpy(pu8Dst + u32Dst, pu8Src + u32Src, u32Piece);
    u32Dst += u32Piece;
    u32Src += u32Piece;
    u32Left -= u32Piece;
  }
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_CopyFromRingToNonRingBuffer(uint8_t *pu8Dst, const uint8_t *pu8Ring,
                                                     uint32_t sztRingSize, uint32_t sztOffset,
                                                     uint32_t sztAdvance, uint32_t sztCount) {
  // The linear buffer is a ring that nothing wraps.
  return ze_kest_Utility_CopyFromRingToRingBuffer(pu8Dst, sztCount, 0, 0, pu8Ring, sztRingSize, sztOffset,
                                                  sztAdvance, sztCount);
}
