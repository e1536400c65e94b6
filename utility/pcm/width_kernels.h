// SPDX-License-Identifier: Apache-2.0
// Sample conversions in blocks, using the vector instructions of the processor.
#pragma once

#include <cstddef>
#include <cstdint>

#include "utility/pcm/shift_sample.h"

namespace kest {

using From16To24 = ShiftSample<2, 3, 8>;
using From16To32 = ShiftSample<2, 4, 16>;
using From24To16 = ShiftSample<3, 2, -8>;
using From24To32 = ShiftSample<3, 4, 8>;
using From24LeTo16 = ShiftSample<4, 2, -8>;
using From24LeTo32 = ShiftSample<4, 4, 8>;
using From32To16 = ShiftSample<4, 2, -16>;

constexpr uint32_t kBlockSamples = 16;

// Converts consecutive blocks; each is read completely before it is stored. No alignment is required.
using BlockKernel = void (*)(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Blocks);

// The kernel of a conversion; NULL when this processor has none that beats sample by sample.
template <typename Sample>
BlockKernel KernelOf();

#if (defined(__arm__) && defined(__ARM_NEON)) || defined(__x86_64__)
template <>
BlockKernel KernelOf<From16To24>();
template <>
BlockKernel KernelOf<From16To32>();
template <>
BlockKernel KernelOf<From24To16>();
template <>
BlockKernel KernelOf<From24To32>();
template <>
BlockKernel KernelOf<From24LeTo16>();
template <>
BlockKernel KernelOf<From24LeTo32>();
template <>
BlockKernel KernelOf<From32To16>();
#else
template <typename Sample>
BlockKernel KernelOf() {
  return nullptr;
}
#endif

}  // namespace kest
