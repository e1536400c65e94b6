// SPDX-License-Identifier: Apache-2.0
// AVX2 building blocks. An AVX2 vector consists of two 16-byte lanes that most instructions keep separate, so
// each operation here processes two 16-byte tiles at a time.
#pragma once

#include "utility/port/frame_tile.h"

#ifdef __x86_64__

#include <immintrin.h>

#define KEST_AVX2 __attribute__((target("avx2")))
#define KEST_LANES KEST_AVX2 KEST_TILE_PART

namespace kest::avx2 {

KEST_LANES __m128i LoadLane(const uint8_t *pu8) {
  return _mm_loadu_si128(static_cast<const __m128i *>(static_cast<const void *>(pu8)));
}
KEST_LANES __m128i LoadHalf(const uint8_t *pu8) {
  return _mm_loadl_epi64(static_cast<const __m128i *>(static_cast<const void *>(pu8)));
}
KEST_LANES void StoreLane(uint8_t *pu8, __m128i v) {
  _mm_storeu_si128(static_cast<__m128i *>(static_cast<void *>(pu8)), v);
}
KEST_LANES void StoreHalf(uint8_t *pu8, __m128i v) {
  _mm_storel_epi64(static_cast<__m128i *>(static_cast<void *>(pu8)), v);
}
KEST_LANES __m128i HighHalf(__m128i v) {
  return _mm_unpackhi_epi64(v, v);
}
KEST_LANES __m128i FirstLane(__m256i v) {
  return _mm256_castsi256_si128(v);
}
KEST_LANES __m128i SecondLane(__m256i v) {
  return _mm256_extracti128_si256(v, 1);
}

// The bytes of the second lane are sztLane after those of the first.
KEST_LANES __m256i LoadLanes(const uint8_t *pu8, size_t sztLane) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadLane(pu8)), LoadLane(pu8 + sztLane), 1);
}
KEST_LANES void StoreLanes(uint8_t *pu8, size_t sztLane, __m256i v) {
  StoreLane(pu8, FirstLane(v));
  StoreLane(pu8 + sztLane, SecondLane(v));
}
KEST_LANES void StoreWhole(uint8_t *pu8, __m256i v) {
  _mm256_storeu_si256(static_cast<__m256i *>(static_cast<void *>(pu8)), v);
}
KEST_LANES __m256i ShuffleBytes(__m256i v, __m128i order) {
  return _mm256_shuffle_epi8(v, _mm256_broadcastsi128_si256(order));
}
template <int kOrder>
KEST_LANES __m256i Shuffle32(__m256i a, __m256i b) {
  return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), kOrder));
}

// In each lane, 16 bytes of a channel's samples, converted to the format of the linear buffer.
template <typename Kernel>
KEST_LANES __m256i ReadRow(const uint8_t *pu8, size_t sztLane) {
  constexpr int kShift = Kernel::kShiftBits;
  if constexpr (kShift == 0) {
    return LoadLanes(pu8, sztLane);
  } else if constexpr (Kernel::kLinearBytes == 2) {
    return _mm256_packs_epi32(_mm256_srai_epi32(LoadLanes(pu8, sztLane), -kShift),
                              _mm256_srai_epi32(LoadLanes(pu8 + 16, sztLane), -kShift));
  } else if constexpr (Kernel::kRingBytes == 2) {
    return _mm256_slli_epi32(
        _mm256_cvtepu16_epi32(_mm_unpacklo_epi64(LoadHalf(pu8), LoadHalf(pu8 + sztLane))), kShift);
  } else {
    return _mm256_srli_epi32(LoadLanes(pu8, sztLane), -kShift);
  }
}

// For one channel: the second lane continues where the first one ends.
template <typename Kernel>
KEST_LANES __m256i ReadRow(const uint8_t *pu8) {
  return ReadRow<Kernel>(pu8, 16 / Kernel::kLinearBytes * Kernel::kRingBytes);
}

template <uint32_t kCount>
struct Vectors {
  __m256i v[kCount];
};

KEST_LANES Vectors<4> Transposed(const Vectors<4> &st) {
  const __m256i a0 = _mm256_unpacklo_epi32(st.v[0], st.v[1]);
  const __m256i a1 = _mm256_unpackhi_epi32(st.v[0], st.v[1]);
  const __m256i a2 = _mm256_unpacklo_epi32(st.v[2], st.v[3]);
  const __m256i a3 = _mm256_unpackhi_epi32(st.v[2], st.v[3]);
  return {{_mm256_unpacklo_epi64(a0, a2), _mm256_unpackhi_epi64(a0, a2), _mm256_unpacklo_epi64(a1, a3),
           _mm256_unpackhi_epi64(a1, a3)}};
}
// For 16-bit samples: pairs of rows are combined to 32 bits, which are then transposed as above.
KEST_LANES Vectors<8> Transposed(const Vectors<8> &st) {
  const Vectors<4> a = Transposed(
      Vectors<4>{{_mm256_unpacklo_epi16(st.v[0], st.v[1]), _mm256_unpacklo_epi16(st.v[2], st.v[3]),
                  _mm256_unpacklo_epi16(st.v[4], st.v[5]), _mm256_unpacklo_epi16(st.v[6], st.v[7])}});
  const Vectors<4> b = Transposed(
      Vectors<4>{{_mm256_unpackhi_epi16(st.v[0], st.v[1]), _mm256_unpackhi_epi16(st.v[2], st.v[3]),
                  _mm256_unpackhi_epi16(st.v[4], st.v[5]), _mm256_unpackhi_epi16(st.v[6], st.v[7])}});
  return {{a.v[0], a.v[1], a.v[2], a.v[3], b.v[0], b.v[1], b.v[2], b.v[3]}};
}

// Two channels' rows as stereo frames: the first vector has the first half of each lane's frames, the second
// vector the other half.
template <size_t kBytes>
KEST_LANES Vectors<2> Interleaved(__m256i left, __m256i right) {
  if constexpr (kBytes == 2)
    return {{_mm256_unpacklo_epi16(left, right), _mm256_unpackhi_epi16(left, right)}};
  return {{_mm256_unpacklo_epi32(left, right), _mm256_unpackhi_epi32(left, right)}};
}
// The inverse of Interleaved.
template <size_t kBytes>
KEST_LANES Vectors<2> Separated(const Vectors<2> &st) {
  if constexpr (kBytes == 2) {
    const __m128i order = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
    const __m256i head = ShuffleBytes(st.v[0], order);
    const __m256i tail = ShuffleBytes(st.v[1], order);
    return {{_mm256_unpacklo_epi64(head, tail), _mm256_unpackhi_epi64(head, tail)}};
  }
  return {{Shuffle32<_MM_SHUFFLE(2, 0, 2, 0)>(st.v[0], st.v[1]),
           Shuffle32<_MM_SHUFFLE(3, 1, 3, 1)>(st.v[0], st.v[1])}};
}

// Runs a tile repeatedly over consecutive frames.
template <typename Tile>
struct Repeated {
  static constexpr size_t kFrames = Tile::kFrames;

  template <typename Kernel>
  KEST_AVX2 static void Move(FramePlace<Kernel> stPlace, size_t sztTiles) {
    for (; sztTiles != 0; --sztTiles) {
      Tile::Move(stPlace);
      stPlace.Skip(kFrames);
    }
  }
};

}  // namespace kest::avx2

#endif
