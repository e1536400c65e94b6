// SPDX-License-Identifier: Apache-2.0
// NEON building blocks: loads and stores by sample width and number of channels. Structured loads and stores
// of a single lane put the samples of up to four channels into a frame or take them out of it, so nothing
// needs to be transposed in registers.
#pragma once

#include "utility/port/frame_tile.h"
#include "utility/port/sample_kernel.h"

#if defined(__arm__) && defined(__ARM_NEON)

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
KEST_TILE_PART void StoreFrame(uint8_t *pu8, const OneOf16 &st) {
  vst1q_lane_u16(As<uint16_t>(pu8), st.val[0], kLane);
}
template <int kLane>
KEST_TILE_PART void StoreFrame(uint8_t *pu8, const uint16x8x2_t &st) {
  vst2q_lane_u16(As<uint16_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void StoreFrame(uint8_t *pu8, const uint16x8x4_t &st) {
  vst4q_lane_u16(As<uint16_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void StoreFrame(uint8_t *pu8, const OneOf32 &st) {
  vst1q_lane_u32(As<uint32_t>(pu8), st.val[0], kLane);
}
template <int kLane>
KEST_TILE_PART void StoreFrame(uint8_t *pu8, const uint32x4x2_t &st) {
  vst2q_lane_u32(As<uint32_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void StoreFrame(uint8_t *pu8, const uint32x4x4_t &st) {
  vst4q_lane_u32(As<uint32_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void StoreFrame(uint8_t *pu8, const uint8x8x3_t &st) {
  vst3_lane_u8(pu8, st, kLane);
}

template <int kLane>
KEST_TILE_PART void LoadFrame(const uint8_t *pu8, OneOf16 &st) {
  st.val[0] = vld1q_lane_u16(As<uint16_t>(pu8), st.val[0], kLane);
}
template <int kLane>
KEST_TILE_PART void LoadFrame(const uint8_t *pu8, uint16x8x2_t &st) {
  st = vld2q_lane_u16(As<uint16_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void LoadFrame(const uint8_t *pu8, uint16x8x4_t &st) {
  st = vld4q_lane_u16(As<uint16_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void LoadFrame(const uint8_t *pu8, OneOf32 &st) {
  st.val[0] = vld1q_lane_u32(As<uint32_t>(pu8), st.val[0], kLane);
}
template <int kLane>
KEST_TILE_PART void LoadFrame(const uint8_t *pu8, uint32x4x2_t &st) {
  st = vld2q_lane_u32(As<uint32_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void LoadFrame(const uint8_t *pu8, uint32x4x4_t &st) {
  st = vld4q_lane_u32(As<uint32_t>(pu8), st, kLane);
}
template <int kLane>
KEST_TILE_PART void LoadFrame(const uint8_t *pu8, uint8x8x3_t &st) {
  st = vld3_lane_u8(pu8, st, kLane);
}

// One frame per lane.
template <typename AnyRows, int... kLanes>
KEST_TILE_PART void StoreFrames(uint8_t *pu8, size_t sztStep, const AnyRows &st,
                                std::integer_sequence<int, kLanes...>) {
  ((StoreFrame<kLanes>(pu8, st), pu8 += sztStep), ...);
}
template <typename AnyRows, int... kLanes>
KEST_TILE_PART void LoadFrames(const uint8_t *pu8, size_t sztStep, AnyRows &st,
                               std::integer_sequence<int, kLanes...>) {
  ((LoadFrame<kLanes>(pu8, st), pu8 += sztStep), ...);
}

// A channel's samples, converted to the format of the linear buffer.
KEST_TILE_PART uint16x8_t ReadRow(ReadAsIs<2>, const uint8_t *pu8) {
  return vld1q_u16(As<uint16_t>(pu8));
}
KEST_TILE_PART uint32x4_t ReadRow(ReadAsIs<4>, const uint8_t *pu8) {
  return vld1q_u32(As<uint32_t>(pu8));
}
KEST_TILE_PART uint16x8_t ReadRow(ReadShifted<4, 2, -16>, const uint8_t *pu8) {
  return vld2q_u16(As<uint16_t>(pu8)).val[1];
}
KEST_TILE_PART void WriteRow(uint8_t *pu8, uint16x8_t u16Row) {
  vst1q_u16(As<uint16_t>(pu8), u16Row);
}
KEST_TILE_PART void WriteRow(uint8_t *pu8, uint32x4_t u32Row) {
  vst1q_u32(As<uint32_t>(pu8), u32Row);
}

// Whole stereo frames; each row is a channel.
KEST_TILE_PART void StoreStereo(uint8_t *pu8, const uint16x8x2_t &st) {
  vst2q_u16(As<uint16_t>(pu8), st);
}
KEST_TILE_PART void StoreStereo(uint8_t *pu8, const uint32x4x2_t &st) {
  vst2q_u32(As<uint32_t>(pu8), st);
}
KEST_TILE_PART void LoadStereo(const uint8_t *pu8, uint16x8x2_t &st) {
  st = vld2q_u16(As<uint16_t>(pu8));
}
KEST_TILE_PART void LoadStereo(const uint8_t *pu8, uint32x4x2_t &st) {
  st = vld2q_u32(As<uint32_t>(pu8));
}

// The rows of consecutive channels, starting with the given ring.
template <typename Kernel, typename AnyRows, size_t... kChannels>
KEST_TILE_PART void ReadRows(const uint8_t *pu8Ring, size_t sztPitch, AnyRows &st,
                             std::index_sequence<kChannels...>) {
  ((st.val[kChannels] = ReadRow(Kernel{}, pu8Ring), pu8Ring += sztPitch), ...);
}
template <typename AnyRows, size_t... kChannels>
KEST_TILE_PART void WriteRows(uint8_t *pu8Ring, size_t sztPitch, const AnyRows &st,
                              std::index_sequence<kChannels...>) {
  ((WriteRow(pu8Ring, st.val[kChannels]), pu8Ring += sztPitch), ...);
}

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
  ((StoreFrame<kLanes>(pu8, stEven), pu8 += sztStep, StoreFrame<kLanes>(pu8, stOdd), pu8 += sztStep), ...);
}

}  // namespace kest::neon

#endif
