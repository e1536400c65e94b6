// SPDX-License-Identifier: Apache-2.0
// The functions that move channels. One is selected by width and stride, once, and then applied to all blocks
// of a port.
#pragma once

#include "utility/port/channel_block.h"
#include "utility/port/sample_kernel.h"

namespace kest {

// Moves the units of a plan between a block's rings and its place in a linear buffer.
template <typename Ring, typename Linear>
using Mover = void (*)(const ChannelBlock<Ring, Linear> &stBlock, const RingPlan &stPlan);

using RingReader = Mover<const uint8_t, uint8_t>;
using RingWriter = Mover<uint8_t, const uint8_t>;

// A mover and the unit, in bytes of the ring, of the plans it expects; with unit 0 the plan is empty and
// nothing is moved.
template <typename RingMover>
struct ChannelWay {
  RingMover pfnMove;
  uint32_t u32Unit;
};

// The movers of one conversion for each width in the ring; NULL for a width that the conversion does not
// support.
template <typename RingMover>
struct MoverTable {
  RingMover pfnBytes;
  RingMover pfn2;
  RingMover pfn3;
  RingMover pfn4;
  uint32_t u32LinearBytes;  // sample width in the linear buffer; 0: the same as in the ring

  [[nodiscard]] ChannelWay<RingMover> For(uint32_t u32BytesPerSample, uint32_t u32Stride) const {
    return u32Stride == 1 ? Contiguous() : Strided(u32BytesPerSample);
  }

  // For a stride of 1. Deliberate: it copies the ring's bytes unchanged, so it accepts any width and does not
  // convert.
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

extern const MoverTable<RingReader> kReadAsIs;
extern const MoverTable<RingReader> kReadTo16;
extern const MoverTable<RingReader> kReadTo24Le;
extern const MoverTable<RingReader> kReadTo32;
extern const MoverTable<RingWriter> kWriteAsIs;

}  // namespace kest
