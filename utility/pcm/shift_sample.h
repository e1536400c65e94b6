// SPDX-License-Identifier: Apache-2.0
// The one kernel of all sample conversions: a sample is read as a number without a sign, shifted, and stored
// in its new container, which keeps the low bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kest {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "a sample's low bytes come first");

// kShift: bits to the left, or to the right when it is negative. The sample is read whole before it is
// stored, and a copy of constant size needs no alignment.
template <size_t kSrc, size_t kDst, int kShift>
struct ShiftSample {
  static constexpr size_t kSrcBytes = kSrc;
  static constexpr size_t kDstBytes = kDst;

  static void Move(const uint8_t *pu8Src, uint8_t *pu8Dst) {
    uint32_t u32Sample = 0;
    memcpy(&u32Sample, pu8Src, kSrc);
    if constexpr (kShift < 0) {
      u32Sample >>= -kShift;
    } else {
      u32Sample <<= kShift;
    }
    memcpy(pu8Dst, &u32Sample, kDst);
  }
};

// One after another in ascending order, so source and destination may overlap.
template <typename Kernel>
void ConvertSamples(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Samples) {
  for (; u32Samples != 0; --u32Samples) {
    Kernel::Move(pu8Src, pu8Dst);
    pu8Src += Kernel::kSrcBytes;
    pu8Dst += Kernel::kDstBytes;
  }
}

}  // namespace kest
