// SPDX-License-Identifier: Apache-2.0
// Moving the samples of one channel between its ring and a linear buffer.
//
// A kernel moves one sample and fixes direction, widths and conversion, so that the loops have no branch on
// them. Samples are loaded and stored by copies of constant size, which compile to single accesses.
#pragma once

#include <algorithm>
#include <cstring>

#include "utility/pcm/shift_sample.h"
#include "utility/port/ring_plan.h"

namespace kest {

// The side of every kernel that reads. Of a sample cut by the ring's end the missing bytes read as zero.
template <typename Kernel, size_t kRing, size_t kLinear>
struct ReadKernel {
  using Ring = const uint8_t;
  using Linear = uint8_t;
  static constexpr size_t kRingBytes = kRing;
  static constexpr size_t kLinearBytes = kLinear;

  static void MoveCut(Ring *pu8Ring, Linear *pu8Linear, size_t sztBytes) {
    uint8_t au8Sample[kRing] = {};
    memcpy(au8Sample, pu8Ring, std::min(sztBytes, kRing));
    Kernel::Move(au8Sample, pu8Linear);
  }
};

template <size_t kBytes>
struct ReadAsIs : ReadKernel<ReadAsIs<kBytes>, kBytes, kBytes> {
  static void Move(const uint8_t *pu8Ring, uint8_t *pu8Linear) { memcpy(pu8Linear, pu8Ring, kBytes); }
};

// A read that converts.
template <size_t kRing, size_t kLinear, int kShift>
struct ReadShifted : ReadKernel<ReadShifted<kRing, kLinear, kShift>, kRing, kLinear> {
  static void Move(const uint8_t *pu8Ring, uint8_t *pu8Linear) {
    ShiftSample<kRing, kLinear, kShift>::Move(pu8Ring, pu8Linear);
  }
};

template <size_t kBytes>
struct WriteAsIs {
  using Ring = uint8_t;
  using Linear = const uint8_t;
  static constexpr size_t kRingBytes = kBytes;
  static constexpr size_t kLinearBytes = kBytes;

  static void Move(Ring *pu8Ring, Linear *pu8Linear) { memcpy(pu8Ring, pu8Linear, kBytes); }
  static void MoveCut(Ring *pu8Ring, Linear *pu8Linear, size_t sztBytes) {
    memcpy(pu8Ring, pu8Linear, std::min(sztBytes, kBytes));
  }
};

// The linear buffer's place behind the segment.
template <typename Kernel>
typename Kernel::Linear *MoveSegment(typename Kernel::Ring *pu8Ring, const RingSegment &stSegment,
                                     typename Kernel::Linear *pu8Linear, size_t sztStep) {
  for (size_t sztLeft = stSegment.sztWhole; sztLeft != 0; --sztLeft) {
    Kernel::Move(pu8Ring, pu8Linear);
    pu8Ring += Kernel::kRingBytes;
    pu8Linear += sztStep;
  }
  if (stSegment.sztCut == 0) return pu8Linear;
  Kernel::MoveCut(pu8Ring, pu8Linear, stSegment.sztCut);
  return pu8Linear + sztStep;
}

// Moves the samples of a plan whose unit is the kernel's width in the ring.
template <typename Kernel>
void MoveSamples(typename Kernel::Ring *pu8Ring, const RingPlan &stPlan, typename Kernel::Linear *pu8Linear,
                 uint32_t u32Stride) {
  const size_t sztStep = u32Stride * Kernel::kLinearBytes;
  pu8Linear = MoveSegment<Kernel>(pu8Ring + stPlan.sztStart, stPlan.stFirst, pu8Linear, sztStep);
  MoveSegment<Kernel>(pu8Ring, stPlan.stSecond, pu8Linear, sztStep);
}

}  // namespace kest
