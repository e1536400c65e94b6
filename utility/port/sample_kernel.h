// SPDX-License-Identifier: Apache-2.0
// Moves one sample between its channel's ring and a linear buffer.
//
// A kernel fixes direction, widths and conversion at compile time, so the loops do not branch on them.
// Samples are loaded and stored by memcpy of constant size, which compiles to single accesses.
#pragma once

#include <algorithm>
#include <cstring>

#include "utility/pcm/shift_sample.h"

namespace kest {

// The common part of all kernels that read. For a sample cut by the end of the ring, the missing bytes read
// as zero.
template <typename Kernel, size_t kRing, size_t kLinear>
struct ReadKernel {
  using Ring = const uint8_t;
  using Linear = uint8_t;
  static constexpr bool kReads = true;
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
  static constexpr int kShiftBits = 0;

  static void Move(const uint8_t *pu8Ring, uint8_t *pu8Linear) { memcpy(pu8Linear, pu8Ring, kBytes); }
};

// A read that converts.
template <size_t kRing, size_t kLinear, int kShift>
struct ReadShifted : ReadKernel<ReadShifted<kRing, kLinear, kShift>, kRing, kLinear> {
  static constexpr int kShiftBits = kShift;

  static void Move(const uint8_t *pu8Ring, uint8_t *pu8Linear) {
    ShiftSample<kRing, kLinear, kShift>::Move(pu8Ring, pu8Linear);
  }
};

template <size_t kBytes>
struct WriteAsIs {
  using Ring = uint8_t;
  using Linear = const uint8_t;
  static constexpr bool kReads = false;
  static constexpr size_t kRingBytes = kBytes;
  static constexpr size_t kLinearBytes = kBytes;
  static constexpr int kShiftBits = 0;

  static void Move(Ring *pu8Ring, Linear *pu8Linear) { memcpy(pu8Ring, pu8Linear, kBytes); }
  static void MoveCut(Ring *pu8Ring, Linear *pu8Linear, size_t sztBytes) {
    memcpy(pu8Ring, pu8Linear, std::min(sztBytes, kBytes));
  }
};

}  // namespace kest
