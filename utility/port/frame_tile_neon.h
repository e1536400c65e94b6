// SPDX-License-Identifier: Apache-2.0
// Tiles for 16-bit and 32-bit samples on ARM with NEON.
#pragma once

#include "utility/port/neon_assembly.h"
#include "utility/port/neon_lanes.h"

#if defined(__arm__) && defined(__ARM_NEON)

namespace kest::neon {

// For 16-bit and 32-bit samples.
template <typename Kernel, uint32_t kChannels>
struct RowTile {
  using Channels = std::make_index_sequence<kChannels>;
  static constexpr size_t kFrames = 16 / Kernel::kLinearBytes;
  using Lanes = std::make_integer_sequence<int, int{kFrames}>;

  static void Move(FramePlace<Kernel> stPlace, size_t sztTiles) {
    for (; sztTiles != 0; --sztTiles) {
      Rows<Kernel::kLinearBytes, kChannels> stRows = {};
      if constexpr (Kernel::kReads) {
        ReadRows<Kernel>(stPlace.pu8Ring, stPlace.sztRingPitch, stRows, Channels{});
        StoreFrames(stPlace.pu8Linear, stPlace.sztStep, stRows, Lanes{});
      } else {
        LoadFrames(stPlace.pu8Linear, stPlace.sztStep, stRows, Lanes{});
        WriteRows(stPlace.pu8Ring, stPlace.sztRingPitch, stRows, Channels{});
      }
      stPlace.Skip(kFrames);
    }
  }
};

// For frames that hold only the two channels, so consecutive frames are contiguous. Each tile consists of
// several runs, because the loop overhead equals the cost of one run.
template <typename Kernel, typename Run>
struct StereoTile {
  static constexpr size_t kRuns = 4;
  static constexpr size_t kFrames = kRuns * Run::kFrames;

  static void Move(const FramePlace<Kernel> &stPlace, size_t sztTiles) {
    auto *pu8Left = stPlace.pu8Ring;
    auto *pu8Right = stPlace.RingOf(1);
    auto *pu8Linear = stPlace.pu8Linear;
    for (; sztTiles != 0; --sztTiles) {
#pragma GCC unroll 4
      for (size_t sztRun = 0; sztRun < kRuns; ++sztRun) {
        Run::Move(pu8Left, pu8Right, pu8Linear);
        pu8Left += Run::kFrames * Kernel::kRingBytes;
        pu8Right += Run::kFrames * Kernel::kRingBytes;
        KeepAdvanced(pu8Left, pu8Right, pu8Linear);
      }
    }
  }
};

template <typename Kernel>
struct RowStereoRun {
  static constexpr size_t kFrames = 16 / Kernel::kLinearBytes;

  KEST_TILE_PART static void Move(typename Kernel::Ring *pu8Left, typename Kernel::Ring *pu8Right,
                                  typename Kernel::Linear *&pu8Linear) {
    Rows<Kernel::kLinearBytes, 2> stRows;
    if constexpr (Kernel::kReads) {
      stRows.val[0] = ReadRow(Kernel{}, pu8Left);
      stRows.val[1] = ReadRow(Kernel{}, pu8Right);
      StoreStereo(pu8Linear, stRows);
    } else {
      LoadStereo(pu8Linear, stRows);
      WriteRow(pu8Left, stRows.val[0]);
      WriteRow(pu8Right, stRows.val[1]);
    }
    pu8Linear += kFrames * 2 * Kernel::kLinearBytes;
  }
};

template <typename Kernel, uint32_t kChannels>
struct WideningTile {
  static constexpr size_t kFrames = 8;

  static void Move(FramePlace<Kernel> stPlace, size_t sztTiles) {
    for (; sztTiles != 0; --sztTiles) {
      Rows<4, kChannels> stEven;
      Rows<4, kChannels> stOdd;
      ReadEvenOdd<Kernel>(stPlace.pu8Ring, stPlace.sztRingPitch, stEven, stOdd,
                          std::make_index_sequence<kChannels>{});
      StoreEvenOdd(stPlace.pu8Linear, stPlace.sztStep, stEven, stOdd, std::make_integer_sequence<int, 4>{});
      stPlace.Skip(kFrames);
    }
  }
};

template <typename Kernel>
struct WideningStereoRun {
  static constexpr size_t kFrames = 8;

  KEST_TILE_PART static void Move(const uint8_t *pu8Left, const uint8_t *pu8Right, uint8_t *&pu8Linear) {
    StoreEvenOddStereo(pu8Linear, EvenOdd<Kernel>(pu8Left), EvenOdd<Kernel>(pu8Right));
  }
};

template <typename Kernel>
inline constexpr bool kWidens = Kernel::kLinearBytes == 4 && Kernel::kShiftBits != 0;

template <typename Kernel, uint32_t kChannels>
using Tile = std::conditional_t<kWidens<Kernel>, WideningTile<Kernel, kChannels>, RowTile<Kernel, kChannels>>;
template <typename Kernel>
using WholeStereo =
    StereoTile<Kernel, std::conditional_t<kWidens<Kernel>, WideningStereoRun<Kernel>, RowStereoRun<Kernel>>>;

}  // namespace kest::neon

namespace kest {

template <typename Kernel>
struct FrameTile<Kernel, 1, false, IfNot24<Kernel>> : neon::Tile<Kernel, 1> {};
template <typename Kernel>
struct FrameTile<Kernel, 2, false, IfNot24<Kernel>> : neon::Tile<Kernel, 2> {};
template <typename Kernel>
struct FrameTile<Kernel, 4, false, IfNot24<Kernel>> : neon::Tile<Kernel, 4> {};
template <typename Kernel>
struct FrameTile<Kernel, 2, true, IfNot24<Kernel>> : neon::WholeStereo<Kernel> {};

}  // namespace kest

#endif
