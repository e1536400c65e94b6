// SPDX-License-Identifier: Apache-2.0
// Tiles for x86-64: rows of samples are transposed in registers.
#pragma once

#include "utility/port/frame_tile.h"
#include "utility/port/sample_kernel.h"

#ifdef __SSE2__

#include <type_traits>
#include <utility>

#include <emmintrin.h>

namespace kest::sse2 {

KEST_TILE_PART __m128i Load(const uint8_t *pu8) {
  return _mm_loadu_si128(static_cast<const __m128i *>(static_cast<const void *>(pu8)));
}
KEST_TILE_PART __m128i LoadHalf(const uint8_t *pu8) {
  return _mm_loadl_epi64(static_cast<const __m128i *>(static_cast<const void *>(pu8)));
}
KEST_TILE_PART void Store(uint8_t *pu8, __m128i v) {
  _mm_storeu_si128(static_cast<__m128i *>(static_cast<void *>(pu8)), v);
}
KEST_TILE_PART void StoreHalf(uint8_t *pu8, __m128i v) {
  _mm_storel_epi64(static_cast<__m128i *>(static_cast<void *>(pu8)), v);
}
KEST_TILE_PART __m128i HighHalf(__m128i v) {
  return _mm_unpackhi_epi64(v, v);
}

// A channel's samples as they are in the linear buffer.
template <typename Kernel>
KEST_TILE_PART __m128i Row(const uint8_t *pu8) {
  constexpr int kShift = Kernel::kShiftBits;
  if constexpr (kShift == 0) {
    return Load(pu8);
  } else if constexpr (Kernel::kLinearBytes == 2) {
    return _mm_packs_epi32(_mm_srai_epi32(Load(pu8), -kShift), _mm_srai_epi32(Load(pu8 + 16), -kShift));
  } else if constexpr (Kernel::kRingBytes == 2) {
    return _mm_slli_epi32(_mm_unpacklo_epi16(LoadHalf(pu8), _mm_setzero_si128()), kShift);
  } else {
    return _mm_srli_epi32(Load(pu8), -kShift);
  }
}

template <uint32_t kCount>
struct Vectors {
  __m128i v[kCount];
};

KEST_TILE_PART Vectors<8> Transposed16(const Vectors<8> &st) {
  const __m128i a0 = _mm_unpacklo_epi16(st.v[0], st.v[1]);
  const __m128i a1 = _mm_unpackhi_epi16(st.v[0], st.v[1]);
  const __m128i a2 = _mm_unpacklo_epi16(st.v[2], st.v[3]);
  const __m128i a3 = _mm_unpackhi_epi16(st.v[2], st.v[3]);
  const __m128i a4 = _mm_unpacklo_epi16(st.v[4], st.v[5]);
  const __m128i a5 = _mm_unpackhi_epi16(st.v[4], st.v[5]);
  const __m128i a6 = _mm_unpacklo_epi16(st.v[6], st.v[7]);
  const __m128i a7 = _mm_unpackhi_epi16(st.v[6], st.v[7]);
  const __m128i b0 = _mm_unpacklo_epi32(a0, a2);
  const __m128i b1 = _mm_unpackhi_epi32(a0, a2);
  const __m128i b2 = _mm_unpacklo_epi32(a1, a3);
  const __m128i b3 = _mm_unpackhi_epi32(a1, a3);
  const __m128i b4 = _mm_unpacklo_epi32(a4, a6);
  const __m128i b5 = _mm_unpackhi_epi32(a4, a6);
  const __m128i b6 = _mm_unpacklo_epi32(a5, a7);
  const __m128i b7 = _mm_unpackhi_epi32(a5, a7);
  return {{_mm_unpacklo_epi64(b0, b4), _mm_unpackhi_epi64(b0, b4), _mm_unpacklo_epi64(b1, b5),
           _mm_unpackhi_epi64(b1, b5), _mm_unpacklo_epi64(b2, b6), _mm_unpackhi_epi64(b2, b6),
           _mm_unpacklo_epi64(b3, b7), _mm_unpackhi_epi64(b3, b7)}};
}

KEST_TILE_PART Vectors<4> Transposed32(const Vectors<4> &st) {
  const __m128i a0 = _mm_unpacklo_epi32(st.v[0], st.v[1]);
  const __m128i a1 = _mm_unpackhi_epi32(st.v[0], st.v[1]);
  const __m128i a2 = _mm_unpacklo_epi32(st.v[2], st.v[3]);
  const __m128i a3 = _mm_unpackhi_epi32(st.v[2], st.v[3]);
  return {{_mm_unpacklo_epi64(a0, a2), _mm_unpackhi_epi64(a0, a2), _mm_unpacklo_epi64(a1, a3),
           _mm_unpackhi_epi64(a1, a3)}};
}

KEST_TILE_PART Vectors<8> Transposed(const Vectors<8> &st) {
  return Transposed16(st);
}
KEST_TILE_PART Vectors<4> Transposed(const Vectors<4> &st) {
  return Transposed32(st);
}

// As many frames as channels.
template <typename Kernel, size_t... kRows>
struct SquareTile : EveryMachine {
  static constexpr size_t kFrames = sizeof...(kRows);

  static void Move(FramePlace<Kernel> stPlace, size_t sztTiles) {
    for (; sztTiles != 0; --sztTiles) {
      if constexpr (Kernel::kReads) {
        const Vectors<kFrames> st =
            Transposed(Vectors<kFrames>{{Row<Kernel>(stPlace.pu8Ring + kRows * stPlace.sztRingPitch)...}});
        (Store(stPlace.pu8Linear + kRows * stPlace.sztStep, st.v[kRows]), ...);
      } else {
        const Vectors<kFrames> st =
            Transposed(Vectors<kFrames>{{Load(stPlace.pu8Linear + kRows * stPlace.sztStep)...}});
        (Store(stPlace.pu8Ring + kRows * stPlace.sztRingPitch, st.v[kRows]), ...);
      }
      stPlace.Skip(kFrames);
    }
  }
};

// Frames of four channels to their rows.
KEST_TILE_PART Vectors<4> FourRows(const Vectors<8> &st) {
  const __m128i a0 = _mm_unpacklo_epi16(st.v[0], st.v[1]);
  const __m128i a1 = _mm_unpacklo_epi16(st.v[2], st.v[3]);
  const __m128i a2 = _mm_unpacklo_epi16(st.v[4], st.v[5]);
  const __m128i a3 = _mm_unpacklo_epi16(st.v[6], st.v[7]);
  const __m128i b0 = _mm_unpacklo_epi32(a0, a1);
  const __m128i b1 = _mm_unpackhi_epi32(a0, a1);
  const __m128i b2 = _mm_unpacklo_epi32(a2, a3);
  const __m128i b3 = _mm_unpackhi_epi32(a2, a3);
  return {{_mm_unpacklo_epi64(b0, b2), _mm_unpackhi_epi64(b0, b2), _mm_unpacklo_epi64(b1, b3),
           _mm_unpackhi_epi64(b1, b3)}};
}

// For writing: more rings, a power of two apart, would push each other out of the cache.
template <typename Kernel, size_t... kLines>
struct FourRowsTile : EveryMachine {
  static constexpr size_t kFrames = sizeof...(kLines);

  static void Move(FramePlace<Kernel> stPlace, size_t sztTiles) {
    for (; sztTiles != 0; --sztTiles) {
      const Vectors<4> st = FourRows({{LoadHalf(stPlace.pu8Linear + kLines * stPlace.sztStep)...}});
      StoreRows(stPlace, st, std::make_index_sequence<4>{});
      stPlace.Skip(kFrames);
    }
  }

 private:
  template <size_t... kRows>
  KEST_TILE_PART static void StoreRows(const FramePlace<Kernel> &stPlace, const Vectors<4> &st,
                                       std::index_sequence<kRows...>) {
    (Store(stPlace.pu8Ring + kRows * stPlace.sztRingPitch, st.v[kRows]), ...);
  }
};

// Two channels' rows as the frames of stereo, and back.
template <size_t kBytes>
KEST_TILE_PART Vectors<2> Interleaved(__m128i left, __m128i right) {
  if constexpr (kBytes == 2) return {{_mm_unpacklo_epi16(left, right), _mm_unpackhi_epi16(left, right)}};
  return {{_mm_unpacklo_epi32(left, right), _mm_unpackhi_epi32(left, right)}};
}
template <size_t kBytes>
KEST_TILE_PART Vectors<2> Separated(__m128i head, __m128i tail) {
  if constexpr (kBytes == 2) {
    return {{_mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(head, 16), 16),
                             _mm_srai_epi32(_mm_slli_epi32(tail, 16), 16)),
             _mm_packs_epi32(_mm_srai_epi32(head, 16), _mm_srai_epi32(tail, 16))}};
  }
  const __m128 a = _mm_castsi128_ps(head);
  const __m128 b = _mm_castsi128_ps(tail);
  return {{_mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0))),
           _mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1)))}};
}

// A pair of samples for each frame.
KEST_TILE_PART void StorePair16(uint8_t *pu8, __m128i v) {
  const int s32 = _mm_cvtsi128_si32(v);
  memcpy(pu8, &s32, sizeof s32);
}
KEST_TILE_PART __m128i LoadPair16(const uint8_t *pu8) {
  int s32;
  memcpy(&s32, pu8, sizeof s32);
  return _mm_cvtsi32_si128(s32);
}

template <size_t kBytes>
KEST_TILE_PART void StorePairs(uint8_t *pu8, size_t sztStep, __m128i v) {
  if constexpr (kBytes == 2) {
    StorePair16(pu8, v);
    StorePair16(pu8 + sztStep, _mm_shuffle_epi32(v, 1));
    StorePair16(pu8 + 2 * sztStep, _mm_shuffle_epi32(v, 2));
    StorePair16(pu8 + 3 * sztStep, _mm_shuffle_epi32(v, 3));
  } else {
    StoreHalf(pu8, v);
    StoreHalf(pu8 + sztStep, HighHalf(v));
  }
}
template <size_t kBytes>
KEST_TILE_PART __m128i LoadPairs(const uint8_t *pu8, size_t sztStep) {
  if constexpr (kBytes == 2) {
    return _mm_unpacklo_epi64(
        _mm_unpacklo_epi32(LoadPair16(pu8), LoadPair16(pu8 + sztStep)),
        _mm_unpacklo_epi32(LoadPair16(pu8 + 2 * sztStep), LoadPair16(pu8 + 3 * sztStep)));
  }
  return _mm_unpacklo_epi64(LoadHalf(pu8), LoadHalf(pu8 + sztStep));
}

template <typename Kernel, bool kWholeFrames>
struct PairTile : EveryMachine {
  static constexpr size_t kBytes = Kernel::kLinearBytes;
  static constexpr size_t kFrames = 16 / kBytes;

  static void Move(FramePlace<Kernel> stPlace, size_t sztTiles) {
    for (; sztTiles != 0; --sztTiles) {
      auto *pu8Right = stPlace.pu8Ring + stPlace.sztRingPitch;
      const size_t sztTail = kFrames / 2 * stPlace.sztStep;
      if constexpr (Kernel::kReads) {
        const Vectors<2> st = Interleaved<kBytes>(Row<Kernel>(stPlace.pu8Ring), Row<Kernel>(pu8Right));
        StoreFrames(stPlace.pu8Linear, stPlace.sztStep, st.v[0]);
        StoreFrames(stPlace.pu8Linear + sztTail, stPlace.sztStep, st.v[1]);
      } else {
        const Vectors<2> st = Separated<kBytes>(LoadFrames(stPlace.pu8Linear, stPlace.sztStep),
                                                LoadFrames(stPlace.pu8Linear + sztTail, stPlace.sztStep));
        Store(stPlace.pu8Ring, st.v[0]);
        Store(pu8Right, st.v[1]);
      }
      stPlace.Skip(kFrames);
    }
  }

 private:
  KEST_TILE_PART static void StoreFrames(uint8_t *pu8, size_t sztStep, __m128i v) {
    if constexpr (kWholeFrames) return Store(pu8, v);
    StorePairs<kBytes>(pu8, sztStep, v);
  }
  KEST_TILE_PART static __m128i LoadFrames(const uint8_t *pu8, size_t sztStep) {
    if constexpr (kWholeFrames) return Load(pu8);
    return LoadPairs<kBytes>(pu8, sztStep);
  }
};

}  // namespace kest::sse2

namespace kest {

template <>
struct FrameTile<WriteAsIs<2>, 4, false> : sse2::FourRowsTile<WriteAsIs<2>, 0, 1, 2, 3, 4, 5, 6, 7> {};
template <typename Kernel>
struct FrameTile<Kernel, 8, false, std::enable_if_t<Kernel::kReads && Kernel::kLinearBytes == 2>>
    : sse2::SquareTile<Kernel, 0, 1, 2, 3, 4, 5, 6, 7> {};
template <typename Kernel>
struct FrameTile<Kernel, 4, false, IfOf32<Kernel>> : sse2::SquareTile<Kernel, 0, 1, 2, 3> {};
template <typename Kernel, bool kWholeFrames>
struct FrameTile<Kernel, 2, kWholeFrames, IfNot24<Kernel>> : sse2::PairTile<Kernel, kWholeFrames> {};

}  // namespace kest

#endif
