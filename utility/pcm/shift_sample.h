// SPDX-License-Identifier: Apache-2.0
// The basis of every sample conversion: a sample is read as an unsigned number, shifted, and stored in its
// new container, which keeps the low bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kest {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "a sample's low bytes come first");

// Three bytes are combined in registers, because a memcpy of three bytes goes through memory twice.
template <size_t kBytes>
uint32_t LoadSample(const uint8_t *pu8) {
  if constexpr (kBytes == 3) return uint32_t{pu8[0]} | uint32_t{pu8[1]} << 8 | uint32_t{pu8[2]} << 16;
  uint32_t u32Sample = 0;
  memcpy(&u32Sample, pu8, kBytes);
  return u32Sample;
}

// kShift: bits to shift left; negative: right. The sample is read completely before it is stored, and a
// memcpy of constant size needs no alignment.
template <size_t kSrc, size_t kDst, int kShift>
struct ShiftSample {
  static constexpr size_t kSrcBytes = kSrc;
  static constexpr size_t kDstBytes = kDst;

  static void Move(const uint8_t *pu8Src, uint8_t *pu8Dst) {
    uint32_t u32Sample = LoadSample<kSrc>(pu8Src);
    if constexpr (kShift < 0) {
      u32Sample >>= -kShift;
    } else {
      u32Sample <<= kShift;
    }
    memcpy(pu8Dst, &u32Sample, kDst);
  }
};

// Converts in ascending order, one sample at a time, so source and destination may overlap.
template <typename Kernel>
void ConvertSamples(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Samples) {
  for (; u32Samples != 0; --u32Samples) {
    Kernel::Move(pu8Src, pu8Dst);
    pu8Src += Kernel::kSrcBytes;
    pu8Dst += Kernel::kDstBytes;
  }
}

}  // namespace kest
