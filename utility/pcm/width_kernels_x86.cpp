// SPDX-License-Identifier: Apache-2.0
// The packed conversions need a byte shuffle (SSSE3), which not every x86-64 processor has.
#ifdef __x86_64__

#include <tmmintrin.h>

#include "utility/pcm/width_kernels.h"

#define KEST_SSSE3 __attribute__((target("ssse3")))

namespace kest {
namespace {

constexpr char Z = -1;  // in a shuffle order: yields a zero byte

__m128i Load16(const uint8_t *pu8) {
  return _mm_loadu_si128(static_cast<const __m128i *>(static_cast<const void *>(pu8)));
}

void Store16(uint8_t *pu8, __m128i stValue) {
  _mm_storeu_si128(static_cast<__m128i *>(static_cast<void *>(pu8)), stValue);
}

void Convert16To32(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Blocks) {
  const __m128i stZero = _mm_setzero_si128();
  for (; u32Blocks != 0; --u32Blocks, pu8Src += 32, pu8Dst += 64) {
    const __m128i st0 = Load16(pu8Src);
    const __m128i st1 = Load16(pu8Src + 16);
    Store16(pu8Dst, _mm_unpacklo_epi16(stZero, st0));
    Store16(pu8Dst + 16, _mm_unpackhi_epi16(stZero, st0));
    Store16(pu8Dst + 32, _mm_unpacklo_epi16(stZero, st1));
    Store16(pu8Dst + 48, _mm_unpackhi_epi16(stZero, st1));
  }
}

// The upper 16 bits of eight samples, after dropping the topmost kLeft bits.
template <int kLeft>
__m128i Upper16Bits(const uint8_t *pu8Src) {
  const __m128i st0 = _mm_srai_epi32(_mm_slli_epi32(Load16(pu8Src), kLeft), 16);
  const __m128i st1 = _mm_srai_epi32(_mm_slli_epi32(Load16(pu8Src + 16), kLeft), 16);
  return _mm_packs_epi32(st0, st1);
}

template <int kLeft>
void ConvertTo16(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Blocks) {
  for (; u32Blocks != 0; --u32Blocks, pu8Src += 64, pu8Dst += 32) {
    const __m128i st0 = Upper16Bits<kLeft>(pu8Src);
    const __m128i st1 = Upper16Bits<kLeft>(pu8Src + 32);
    Store16(pu8Dst, st0);
    Store16(pu8Dst + 16, st1);
  }
}

void Convert24LeTo32(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Blocks) {
  for (; u32Blocks != 0; --u32Blocks, pu8Src += 64, pu8Dst += 64) {
    const __m128i st0 = Load16(pu8Src);
    const __m128i st1 = Load16(pu8Src + 16);
    const __m128i st2 = Load16(pu8Src + 32);
    const __m128i st3 = Load16(pu8Src + 48);
    Store16(pu8Dst, _mm_slli_epi32(st0, 8));
    Store16(pu8Dst + 16, _mm_slli_epi32(st1, 8));
    Store16(pu8Dst + 32, _mm_slli_epi32(st2, 8));
    Store16(pu8Dst + 48, _mm_slli_epi32(st3, 8));
  }
}

// Each 16-byte result is built from a 16-byte load that covers its samples and does not reach beyond the
// block.
KEST_SSSE3 void Convert16To24(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Blocks) {
  const __m128i stOrder0 = _mm_setr_epi8(Z, 0, 1, Z, 2, 3, Z, 4, 5, Z, 6, 7, Z, 8, 9, Z);
  const __m128i stOrder1 = _mm_setr_epi8(2, 3, Z, 4, 5, Z, 6, 7, Z, 8, 9, Z, 10, 11, Z, 12);
  const __m128i stOrder2 = _mm_setr_epi8(5, Z, 6, 7, Z, 8, 9, Z, 10, 11, Z, 12, 13, Z, 14, 15);
  for (; u32Blocks != 0; --u32Blocks, pu8Src += 32, pu8Dst += 48) {
    const __m128i st0 = _mm_shuffle_epi8(Load16(pu8Src), stOrder0);
    const __m128i st1 = _mm_shuffle_epi8(Load16(pu8Src + 8), stOrder1);
    const __m128i st2 = _mm_shuffle_epi8(Load16(pu8Src + 16), stOrder2);
    Store16(pu8Dst, st0);
    Store16(pu8Dst + 16, st1);
    Store16(pu8Dst + 32, st2);
  }
}

KEST_SSSE3 void Convert24To16(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Blocks) {
  const __m128i stFirst5 = _mm_setr_epi8(1, 2, 4, 5, 7, 8, 10, 11, 13, 14, Z, Z, Z, Z, Z, Z);
  const __m128i stLast3 = _mm_setr_epi8(Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, 8, 9, 11, 12, 14, 15);
  for (; u32Blocks != 0; --u32Blocks, pu8Src += 48, pu8Dst += 32) {
    const __m128i st0 = _mm_or_si128(_mm_shuffle_epi8(Load16(pu8Src), stFirst5),
                                     _mm_shuffle_epi8(Load16(pu8Src + 8), stLast3));
    const __m128i st1 = _mm_or_si128(_mm_shuffle_epi8(Load16(pu8Src + 24), stFirst5),
                                     _mm_shuffle_epi8(Load16(pu8Src + 32), stLast3));
    Store16(pu8Dst, st0);
    Store16(pu8Dst + 16, st1);
  }
}

KEST_SSSE3 void Convert24To32(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Blocks) {
  const __m128i stLow = _mm_setr_epi8(Z, 0, 1, 2, Z, 3, 4, 5, Z, 6, 7, 8, Z, 9, 10, 11);
  const __m128i stHigh = _mm_setr_epi8(Z, 4, 5, 6, Z, 7, 8, 9, Z, 10, 11, 12, Z, 13, 14, 15);
  for (; u32Blocks != 0; --u32Blocks, pu8Src += 48, pu8Dst += 64) {
    const __m128i st0 = _mm_shuffle_epi8(Load16(pu8Src), stLow);
    const __m128i st1 = _mm_shuffle_epi8(Load16(pu8Src + 8), stHigh);
    const __m128i st2 = _mm_shuffle_epi8(Load16(pu8Src + 24), stLow);
    const __m128i st3 = _mm_shuffle_epi8(Load16(pu8Src + 32), stHigh);
    Store16(pu8Dst, st0);
    Store16(pu8Dst + 16, st1);
    Store16(pu8Dst + 32, st2);
    Store16(pu8Dst + 48, st3);
  }
}

BlockKernel WithByteShuffle(BlockKernel pfnConvert) {
  return __builtin_cpu_supports("ssse3") ? pfnConvert : nullptr;
}

}  // namespace

template <>
BlockKernel KernelOf<From16To24>() {
  return WithByteShuffle(Convert16To24);
}

template <>
BlockKernel KernelOf<From16To32>() {
  return Convert16To32;
}

template <>
BlockKernel KernelOf<From24To16>() {
  return WithByteShuffle(Convert24To16);
}

template <>
BlockKernel KernelOf<From24To32>() {
  return WithByteShuffle(Convert24To32);
}

template <>
BlockKernel KernelOf<From24LeTo16>() {
  return ConvertTo16<8>;
}

template <>
BlockKernel KernelOf<From24LeTo32>() {
  return Convert24LeTo32;
}

template <>
BlockKernel KernelOf<From32To16>() {
  return ConvertTo16<0>;
}

}  // namespace kest

#endif
