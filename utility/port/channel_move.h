// SPDX-License-Identifier: Apache-2.0
// The ways to move a channel, chosen by width and stride once and then applied to every channel of a port.
#pragma once

#include "utility/port/ring_copy.h"

namespace kest {

// Moves a plan's units between one channel's ring and its place in a linear buffer.
template <typename Ring, typename Linear>
using Mover = void (*)(Ring *pu8Ring, const RingPlan &stPlan, Linear *pu8Linear, uint32_t u32Stride);

using RingReader = Mover<const uint8_t, uint8_t>;
using RingWriter = Mover<uint8_t, const uint8_t>;

// A mover and the unit, in bytes of the ring, of the plans that it takes; 0: it takes none and moves nothing.
template <typename RingMover>
struct ChannelWay {
  RingMover pfnMove;
  uint32_t u32Unit;
};

// The movers of one conversion by the width in the ring; NULL where the conversion does not handle it.
template <typename RingMover>
struct MoverTable {
  RingMover pfnBytes;
  RingMover pfn2;
  RingMover pfn3;
  RingMover pfn4;
  uint32_t u32LinearBytes;  // width in the linear buffer; 0: as in the ring

  [[nodiscard]] ChannelWay<RingMover> For(uint32_t u32BytesPerSample, uint32_t u32Stride) const {
    return u32Stride == 1 ? Contiguous() : Strided(u32BytesPerSample);
  }

  // For a stride of 1. It copies the ring's bytes as they are: no width is refused, and no conversion made.
  [[nodiscard]] ChannelWay<RingMover> Contiguous() const { return {pfnBytes, 1}; }

  // For every other stride.
  [[nodiscard]] ChannelWay<RingMover> Strided(uint32_t u32BytesPerSample) const {
    const RingMover pfnSamples = ForWidth(u32BytesPerSample);
    if (pfnSamples == nullptr) return {pfnBytes, 0};
    return {pfnSamples, u32BytesPerSample};
  }

  [[nodiscard]] uint32_t LinearBytes(uint32_t u32BytesPerSample) const {
    return u32LinearBytes == 0 ? u32BytesPerSample : u32LinearBytes;
  }

 private:
  [[nodiscard]] RingMover ForWidth(uint32_t u32BytesPerSample) const {
    if (u32BytesPerSample == 2) return pfn2;
    if (u32BytesPerSample == 3) return pfn3;
    return u32BytesPerSample == 4 ? pfn4 : nullptr;
  }
};

inline void ReadBytes(const uint8_t *pu8Ring, const RingPlan &stPlan, uint8_t *pu8Linear, uint32_t) {
  memcpy(pu8Linear, pu8Ring + stPlan.sztStart, stPlan.stFirst.sztWhole);
  memcpy(pu8Linear + stPlan.stFirst.sztWhole, pu8Ring, stPlan.stSecond.sztWhole);
}

inline void WriteBytes(uint8_t *pu8Ring, const RingPlan &stPlan, const uint8_t *pu8Linear, uint32_t) {
  memcpy(pu8Ring + stPlan.sztStart, pu8Linear, stPlan.stFirst.sztWhole);
  memcpy(pu8Ring, pu8Linear + stPlan.stFirst.sztWhole, stPlan.stSecond.sztWhole);
}

inline constexpr MoverTable<RingReader> kReadAsIs = {ReadBytes, MoveSamples<ReadAsIs<2>>,
                                                     MoveSamples<ReadAsIs<3>>, MoveSamples<ReadAsIs<4>>, 0};
inline constexpr MoverTable<RingReader> kReadTo16 = {ReadBytes, MoveSamples<ReadAsIs<2>>, nullptr,
                                                     MoveSamples<ReadShifted<4, 2, -16>>, 2};
inline constexpr MoverTable<RingReader> kReadTo24Le = {ReadBytes, MoveSamples<ReadShifted<2, 4, 8>>, nullptr,
                                                       MoveSamples<ReadShifted<4, 4, -8>>, 4};
inline constexpr MoverTable<RingReader> kReadTo32 = {ReadBytes, MoveSamples<ReadShifted<2, 4, 16>>, nullptr,
                                                     MoveSamples<ReadAsIs<4>>, 4};
inline constexpr MoverTable<RingWriter> kWriteAsIs = {
    WriteBytes, MoveSamples<WriteAsIs<2>>, MoveSamples<WriteAsIs<3>>, MoveSamples<WriteAsIs<4>>, 0};

}  // namespace kest
