// SPDX-License-Identifier: Apache-2.0
// Tiles for ARM with NEON. Structured loads and stores of a single lane put the samples of up to four
// channels into a frame or take them out of it, so nothing needs to be transposed in registers.
#pragma once

#include "utility/port/frame_tile.h"
#include "utility/port/sample_kernel.h"

#ifdef __ARM_NEON

#include <type_traits>
#include <utility>

#include <arm_neon.h>

namespace kest::neon {

// Samples of several channels in the linear format; each row is a channel.
struct OneOf16 {
  uint16x8_t val[1];
};
struct OneOf32 {
  uint32x4_t val[1];
};
template <size_t kBytes, uint32_t kChannels>
using Rows =
    std::conditional_t<kBytes == 2,
                       std::conditional_t<kChannels == 1, OneOf16,
                                          std::conditional_t<kChannels == 2, uint16x8x2_t, uint16x8x4_t>>,
                       std::conditional_t<kChannels == 1, OneOf32,
                                          std::conditional_t<kChannels == 2, uint32x4x2_t, uint32x4x4_t>>>;

// The intrinsics require pointers to elements, but the instructions do not require their alignment.
template <typename Element>
const Element *As(const uint8_t *pu8) {
  return static_cast<const Element *>(static_cast<const void *>(pu8));
}
template <typename Element>
Element *As(uint8_t *pu8) {
  return static_cast<Element *>(static_cast<void *>(pu8));
}

// Stores one frame; the loads below are the inverse.
template <int kLane>
KEST_TILE_PART void Store(uint8_t *pu8, const OneOf16 &st) {
  vst1q_lane_u16(As<uint16_t>(pu8), st.val[0], kLane);
}
template <int kLane>
KEST_TILE_PART void Store(uint8_t *pu8, const uint16x8x2_t &st) {
  vst2q_lane_u16(As<uint16_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void Store(uint8_t *pu8, const uint16x8x4_t &st) {
  vst4q_lane_u16(As<uint16_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void Store(uint8_t *pu8, const OneOf32 &st) {
  vst1q_lane_u32(As<uint32_t>(pu8), st.val[0], kLane);
}
template <int kLane>
KEST_TILE_PART void Store(uint8_t *pu8, const uint32x4x2_t &st) {
  vst2q_lane_u32(As<uint32_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void Store(uint8_t *pu8, const uint32x4x4_t &st) {
  vst4q_lane_u32(As<uint32_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void Store(uint8_t *pu8, const uint8x8x3_t &st) {
  vst3_lane_u8(pu8, st, kLane);
}

template <int kLane>
KEST_TILE_PART void Load(const uint8_t *pu8, OneOf16 &st) {
  st.val[0] = vld1q_lane_u16(As<uint16_t>(pu8), st.val[0], kLane);
}
template <int kLane>
KEST_TILE_PART void Load(const uint8_t *pu8, uint16x8x2_t &st) {
  st = vld2q_lane_u16(As<uint16_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void Load(const uint8_t *pu8, uint16x8x4_t &st) {
  st = vld4q_lane_u16(As<uint16_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void Load(const uint8_t *pu8, OneOf32 &st) {
  st.val[0] = vld1q_lane_u32(As<uint32_t>(pu8), st.val[0], kLane);
}
template <int kLane>
KEST_TILE_PART void Load(const uint8_t *pu8, uint32x4x2_t &st) {
  st = vld2q_lane_u32(As<uint32_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void Load(const uint8_t *pu8, uint32x4x4_t &st) {
  st = vld4q_lane_u32(As<uint32_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void Load(const uint8_t *pu8, uint8x8x3_t &st) {
  st = vld3_lane_u8(pu8, st, kLane);
}

// One frame per lane.
template <typename AnyRows, int... kLanes>
KEST_TILE_PART void StoreFrames(uint8_t *pu8, size_t sztStep, const AnyRows &st,
                                std::integer_sequence<int, kLanes...>) {
  ((Store<kLanes>(pu8, st), pu8 += sztStep), ...);
}
template <typename AnyRows, int... kLanes>
KEST_TILE_PART void LoadFrames(const uint8_t *pu8, size_t sztStep, AnyRows &st,
                               std::integer_sequence<int, kLanes...>) {
  ((Load<kLanes>(pu8, st), pu8 += sztStep), ...);
}

// A channel's samples, converted to the format of the linear buffer.
KEST_TILE_PART uint16x8_t Row(ReadAsIs<2>, const uint8_t *pu8) {
  return vld1q_u16(As<uint16_t>(pu8));
}
KEST_TILE_PART uint32x4_t Row(ReadAsIs<4>, const uint8_t *pu8) {
  return vld1q_u32(As<uint32_t>(pu8));
}
KEST_TILE_PART uint16x8_t Row(ReadShifted<4, 2, -16>, const uint8_t *pu8) {
  return vld2q_u16(As<uint16_t>(pu8)).val[1];
}
KEST_TILE_PART void StoreAll(uint8_t *pu8, const uint16x8x2_t &st) {
  vst2q_u16(As<uint16_t>(pu8), st);
}
KEST_TILE_PART void StoreAll(uint8_t *pu8, const uint32x4x2_t &st) {
  vst2q_u32(As<uint32_t>(pu8), st);
}
KEST_TILE_PART void LoadAll(const uint8_t *pu8, uint16x8x2_t &st) {
  st = vld2q_u16(As<uint16_t>(pu8));
}
KEST_TILE_PART void LoadAll(const uint8_t *pu8, uint32x4x2_t &st) {
  st = vld2q_u32(As<uint32_t>(pu8));
}

KEST_TILE_PART void PutRow(uint8_t *pu8, uint16x8_t u16Row) {
  vst1q_u16(As<uint16_t>(pu8), u16Row);
}
KEST_TILE_PART void PutRow(uint8_t *pu8, uint32x4_t u32Row) {
  vst1q_u32(As<uint32_t>(pu8), u32Row);
}

// The rows of consecutive channels, starting with the given ring.
template <typename Kernel, typename AnyRows, size_t... kChannels>
KEST_TILE_PART void ReadRows(const uint8_t *pu8Ring, size_t sztPitch, AnyRows &st,
                             std::index_sequence<kChannels...>) {
  ((st.val[kChannels] = Row(Kernel{}, pu8Ring), pu8Ring += sztPitch), ...);
}
template <typename AnyRows, size_t... kChannels>
KEST_TILE_PART void WriteRows(uint8_t *pu8Ring, size_t sztPitch, const AnyRows &st,
                              std::index_sequence<kChannels...>) {
  ((PutRow(pu8Ring, st.val[kChannels]), pu8Ring += sztPitch), ...);
}

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
    auto *pu8Right = stPlace.Channel(1).pu8Ring;
    auto *pu8Linear = stPlace.pu8Linear;
    for (; sztTiles != 0; --sztTiles) {
#pragma GCC unroll 4
      for (size_t sztRun = 0; sztRun < kRuns; ++sztRun) {
        Run::Move(pu8Left, pu8Right, pu8Linear);
        pu8Left += Run::kFrames * Kernel::kRingBytes;
        pu8Right += Run::kFrames * Kernel::kRingBytes;
        // Makes the compiler keep the advanced pointers. Without it, it computes the address of each run
        // separately and loses the free post-increment of the loads and stores.
        asm("" : "+r"(pu8Left), "+r"(pu8Right), "+r"(pu8Linear));
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
      stRows.val[0] = Row(Kernel{}, pu8Left);
      stRows.val[1] = Row(Kernel{}, pu8Right);
      StoreAll(pu8Linear, stRows);
    } else {
      LoadAll(pu8Linear, stRows);
      PutRow(pu8Left, stRows.val[0]);
      PutRow(pu8Right, stRows.val[1]);
    }
    pu8Linear += kFrames * 2 * Kernel::kLinearBytes;
  }
};

// The conversions to 32 bits load eight samples at once, separating even from odd frames. The shift then puts
// both where the stores expect them.
template <typename Kernel>
KEST_TILE_PART uint32x4x2_t EvenOdd(const uint8_t *pu8) {
  if constexpr (Kernel::kRingBytes == 4) {
    const uint32x4x2_t st = vld2q_u32(As<uint32_t>(pu8));
    return {{vshrq_n_u32(st.val[0], -Kernel::kShiftBits), vshrq_n_u32(st.val[1], -Kernel::kShiftBits)}};
  } else {
    const uint16x4x2_t st = vld2_u16(As<uint16_t>(pu8));
    return {{vshll_n_u16(st.val[0], Kernel::kShiftBits), vshll_n_u16(st.val[1], Kernel::kShiftBits)}};
  }
}

template <typename Kernel, typename AnyRows, size_t... kChannels>
KEST_TILE_PART void ReadEvenOdd(const uint8_t *pu8Ring, size_t sztPitch, AnyRows &stEven, AnyRows &stOdd,
                                std::index_sequence<kChannels...>) {
  const auto Read = [&](uint32x4_t & u32Even, uint32x4_t & u32Odd) __attribute__((always_inline)) {
    const uint32x4x2_t st = EvenOdd<Kernel>(pu8Ring);
    u32Even = st.val[0];
    u32Odd = st.val[1];
    pu8Ring += sztPitch;
  };
  (Read(stEven.val[kChannels], stOdd.val[kChannels]), ...);
}

template <typename AnyRows, int... kLanes>
KEST_TILE_PART void StoreEvenOdd(uint8_t *pu8, size_t sztStep, const AnyRows &stEven, const AnyRows &stOdd,
                                 std::integer_sequence<int, kLanes...>) {
  ((Store<kLanes>(pu8, stEven), pu8 += sztStep, Store<kLanes>(pu8, stOdd), pu8 += sztStep), ...);
}

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
    const uint32x4x2_t stLeft = EvenOdd<Kernel>(pu8Left);
    const uint32x4x2_t stRight = EvenOdd<Kernel>(pu8Right);
    register uint32x4_t u32LeftEven asm("q12") = stLeft.val[0];
    register uint32x4_t u32RightEven asm("q13") = stRight.val[0];
    register uint32x4_t u32LeftOdd asm("q14") = stLeft.val[1];
    register uint32x4_t u32RightOdd asm("q15") = stRight.val[1];
    // Not vst4q_u32: with it the compiler computes the address of the second store instead of using
    // post-increment.
    asm volatile(
        "vst4.32 {d24, d26, d28, d30}, [%[linear]]!\n\t"
        "vst4.32 {d25, d27, d29, d31}, [%[linear]]!"
        : [linear] "+r"(pu8Linear)
        : "w"(u32LeftEven), "w"(u32RightEven), "w"(u32LeftOdd), "w"(u32RightOdd)
        : "memory");
  }
};

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

// In assembly because compilers insert register moves between the structured accesses and the zips.
template <typename Kernel>
struct PackedStereoTile {
  static constexpr size_t kFrames = 8;

  static void Move(const FramePlace<Kernel> &stPlace, size_t sztTiles) {
    auto *pu8Left = stPlace.pu8Ring;
    auto *pu8Right = stPlace.Channel(1).pu8Ring;
    auto *pu8Linear = stPlace.pu8Linear;
    for (; sztTiles != 0; --sztTiles) {
      if constexpr (Kernel::kReads) {
        asm volatile(
            "vld3.8 {d16-d18}, [%[left]]!\n\t"
            "vld3.8 {d20-d22}, [%[right]]!\n\t"
            "vzip.8 d16, d20\n\t"
            "vzip.8 d17, d21\n\t"
            "vzip.8 d18, d22\n\t"
            "vst3.8 {d16-d18}, [%[linear]]!\n\t"
            "vst3.8 {d20-d22}, [%[linear]]!"
            : [left] "+r"(pu8Left), [right] "+r"(pu8Right), [linear] "+r"(pu8Linear)
            :
            : "d16", "d17", "d18", "d20", "d21", "d22", "memory");
      } else {
        asm volatile(
            "vld3.8 {d16-d18}, [%[linear]]!\n\t"
            "vld3.8 {d20-d22}, [%[linear]]!\n\t"
            "vuzp.8 d16, d20\n\t"
            "vuzp.8 d17, d21\n\t"
            "vuzp.8 d18, d22\n\t"
            "vst3.8 {d16-d18}, [%[left]]!\n\t"
            "vst3.8 {d20-d22}, [%[right]]!"
            : [left] "+r"(pu8Left), [right] "+r"(pu8Right), [linear] "+r"(pu8Linear)
            :
            : "d16", "d17", "d18", "d20", "d21", "d22", "memory");
      }
    }
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
template <typename Kernel>
struct FrameTile<Kernel, 1, false, If24<Kernel>> : neon::PackedTile<Kernel> {};
template <typename Kernel>
struct FrameTile<Kernel, 2, true, If24<Kernel>> : neon::PackedStereoTile<Kernel> {};

}  // namespace kest

#endif
