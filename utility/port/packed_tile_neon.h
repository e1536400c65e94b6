// SPDX-License-Identifier: Apache-2.0
// Tiles for packed 24-bit samples on ARM with NEON.
#pragma once

#include "utility/port/neon_assembly.h"
#include "utility/port/neon_lanes.h"

#if defined(__arm__) && defined(__ARM_NEON)

namespace kest::neon {

// For one channel of packed samples: a vector holds all the first, second or third bytes.
template <typename Kernel>
struct PackedTile {
  static constexpr size_t kFrames = 8;
  using Lanes = std::make_integer_sequence<int, int{kFrames}>;

  static void Move(FramePlace<Kernel> stPlace, size_t sztTiles) {
    for (; sztTiles != 0; --sztTiles) {
      if constexpr (Kernel::kReads) {
        StoreFrames(stPlace.pu8Linear, stPlace.sztStep, vld3_u8(stPlace.pu8Ring), Lanes{});
      } else {
        uint8x8x3_t stBytes = {};
        LoadFrames(stPlace.pu8Linear, stPlace.sztStep, stBytes, Lanes{});
        vst3_u8(stPlace.pu8Ring, stBytes);
      }
      stPlace.Skip(kFrames);
    }
  }
};

// For frames that hold only the two channels.
template <typename Kernel>
struct PackedStereoTile {
  static constexpr size_t kFrames = 8;

  static void Move(const FramePlace<Kernel> &stPlace, size_t sztTiles) {
    auto *pu8Left = stPlace.pu8Ring;
    auto *pu8Right = stPlace.RingOf(1);
    auto *pu8Linear = stPlace.pu8Linear;
    for (; sztTiles != 0; --sztTiles)
      MovePackedStereo(pu8Left, pu8Right, pu8Linear);
  }
};

}  // namespace kest::neon

namespace kest {

template <typename Kernel>
struct FrameTile<Kernel, 1, false, If24<Kernel>> : neon::PackedTile<Kernel> {};
template <typename Kernel>
struct FrameTile<Kernel, 2, true, If24<Kernel>> : neon::PackedStereoTile<Kernel> {};

}  // namespace kest

#endif
