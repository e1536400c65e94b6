// SPDX-License-Identifier: Apache-2.0
// Copies from one ring to another.
#pragma once

#include <algorithm>
#include <cstring>

#include "utility/port/ring_position.h"

namespace kest {

// A ring and the position where a copy begins. Size and position are in units of u32UnitBytes bytes.
template <typename Byte>
struct RingPlace {
  Byte *pu8Ring;
  uint32_t u32Size;
  uint32_t u32Position;  // already wrapped by WrapOnce
  uint32_t u32UnitBytes;

  // Units from here to the end of the ring.
  [[nodiscard]] uint32_t Room() const { return u32Size - u32Position; }
  [[nodiscard]] Byte *Here() const { return pu8Ring + size_t{u32Position} * u32UnitBytes; }
  void WrapAtEnd() {
    if (u32Position == u32Size) u32Position = 0;
  }
};

// Copies u32Units units of the source; the destination's units must be at least as wide. Copies nothing when
// a position is outside its ring, and at most the size of the smaller ring.
inline void CopyRingToRing(RingPlace<uint8_t> stDst, RingPlace<const uint8_t> stSrc, uint32_t u32Units) {
  if (stDst.u32Position > stDst.u32Size || stSrc.u32Position > stSrc.u32Size) return;
  // Each piece ends at the end of either ring or of the amount. There are at most three pieces, because
  // neither ring is lapped.
  uint32_t u32Left = std::min({u32Units, stDst.u32Size, stSrc.u32Size});
  while (u32Left != 0) {
    stDst.WrapAtEnd();
    stSrc.WrapAtEnd();
    const uint32_t u32Piece = std::min({u32Left, stDst.Room(), stSrc.Room()});
    memcpy(stDst.Here(), stSrc.Here(), size_t{u32Piece} * stSrc.u32UnitBytes);
    stDst.u32Position += u32Piece;
    stSrc.u32Position += u32Piece;
    u32Left -= u32Piece;
  }
}

}  // namespace kest
