// SPDX-License-Identifier: Apache-2.0
// Tiles of packed samples for x86-64 processors that shuffle bytes, which is asked when the library runs.
// Samples are spread to 32 bits, transposed as those, and packed again.
#pragma once

#include "utility/port/frame_tile_sse2.h"

#ifdef __SSE2__

#include <tmmintrin.h>

#define KEST_SSSE3 __attribute__((target("ssse3")))

namespace kest::ssse3 {

using sse2::Vectors;

inline bool Runs() {
  return __builtin_cpu_supports("ssse3") != 0;
}

// Of four samples in a vector's first 12 bytes, or in its last.
KEST_SSSE3 KEST_TILE_PART __m128i SpreadFirst(__m128i v) {
  return _mm_shuffle_epi8(v, _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1));
}
KEST_SSSE3 KEST_TILE_PART __m128i SpreadLast(__m128i v) {
  return _mm_shuffle_epi8(v, _mm_setr_epi8(4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1));
}

// Eight samples one after another, four in either vector.
KEST_SSSE3 KEST_TILE_PART Vectors<2> Load8(const uint8_t *pu8) {
  return {{SpreadFirst(sse2::Load(pu8)), SpreadLast(sse2::Load(pu8 + 8))}};
}
KEST_SSSE3 KEST_TILE_PART void Store8(uint8_t *pu8, __m128i head, __m128i tail) {
  const __m128i first12 =
      _mm_shuffle_epi8(head, _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
  // The first four bytes behind them, the other eight at the start.
  const __m128i last12 =
      _mm_shuffle_epi8(tail, _mm_setr_epi8(5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1, 0, 1, 2, 4));
  sse2::Store(pu8, _mm_or_si128(first12, _mm_and_si128(last12, _mm_setr_epi32(0, 0, 0, -1))));
  sse2::StoreHalf(pu8 + 16, last12);
}

// Two samples, moved in two pieces of constant size: a copy of six bytes would go through memory twice.
KEST_TILE_PART void StorePair(uint8_t *pu8, int64_t s64Pair) {
  const auto u32Head = static_cast<uint32_t>(s64Pair);
  const auto u16Tail = static_cast<uint16_t>(s64Pair >> 32);
  memcpy(pu8, &u32Head, sizeof u32Head);
  memcpy(pu8 + sizeof u32Head, &u16Tail, sizeof u16Tail);
}
KEST_TILE_PART int64_t LoadPair(const uint8_t *pu8) {
  uint32_t u32Head;
  uint16_t u16Tail;
  memcpy(&u32Head, pu8, sizeof u32Head);
  memcpy(&u16Tail, pu8 + sizeof u32Head, sizeof u16Tail);
  return static_cast<int64_t>(u32Head | uint64_t{u16Tail} << 32);
}

// Two samples of two frames.
KEST_SSSE3 KEST_TILE_PART void StoreTwoPairs(uint8_t *pu8, size_t sztStep, __m128i v) {
  const __m128i packed =
      _mm_shuffle_epi8(v, _mm_setr_epi8(0, 1, 2, 4, 5, 6, -1, -1, 8, 9, 10, 12, 13, 14, -1, -1));
  StorePair(pu8, _mm_cvtsi128_si64(packed));
  StorePair(pu8 + sztStep, _mm_cvtsi128_si64(sse2::HighHalf(packed)));
}
KEST_SSSE3 KEST_TILE_PART __m128i LoadTwoPairs(const uint8_t *pu8, size_t sztStep) {
  return _mm_shuffle_epi8(_mm_set_epi64x(LoadPair(pu8 + sztStep), LoadPair(pu8)),
                          _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 8, 9, 10, -1, 11, 12, 13, -1));
}

// Lines are rings or frames: eight samples of eight of them, from the lines of one side to those of the
// other.
template <size_t... kLines>
KEST_SSSE3 KEST_TILE_PART void TransposeLines(const uint8_t *pu8From, size_t sztFrom, uint8_t *pu8To,
                                              size_t sztTo, std::index_sequence<kLines...>) {
  const Vectors<2> a[] = {Load8(pu8From + kLines * sztFrom)...};
  const Vectors<2> b[] = {Load8(pu8From + (4 + kLines) * sztFrom)...};
  const Vectors<4> aHead = sse2::Transposed32({{a[kLines].v[0]...}});
  const Vectors<4> bHead = sse2::Transposed32({{b[kLines].v[0]...}});
  (Store8(pu8To + kLines * sztTo, aHead.v[kLines], bHead.v[kLines]), ...);
  const Vectors<4> aTail = sse2::Transposed32({{a[kLines].v[1]...}});
  const Vectors<4> bTail = sse2::Transposed32({{b[kLines].v[1]...}});
  (Store8(pu8To + (4 + kLines) * sztTo, aTail.v[kLines], bTail.v[kLines]), ...);
}

template <typename Kernel>
struct SquareTile {
  static constexpr size_t kFrames = 8;
  static bool Runs() { return ssse3::Runs(); }

  KEST_SSSE3 static void Move(FramePlace<Kernel> stPlace, size_t sztTiles) {
    for (; sztTiles != 0; --sztTiles) {
      if constexpr (Kernel::kReads) {
        TransposeLines(stPlace.pu8Ring, stPlace.sztRingPitch, stPlace.pu8Linear, stPlace.sztStep,
                       std::make_index_sequence<4>{});
      } else {
        TransposeLines(stPlace.pu8Linear, stPlace.sztStep, stPlace.pu8Ring, stPlace.sztRingPitch,
                       std::make_index_sequence<4>{});
      }
      stPlace.Skip(kFrames);
    }
  }
};

template <typename Kernel, bool kWholeFrames>
struct PairTile {
  static constexpr size_t kFrames = 8;
  static bool Runs() { return ssse3::Runs(); }

  KEST_SSSE3 static void Move(FramePlace<Kernel> stPlace, size_t sztTiles) {
    for (; sztTiles != 0; --sztTiles) {
      auto *pu8Right = stPlace.pu8Ring + stPlace.sztRingPitch;
      const size_t sztTail = kFrames / 2 * stPlace.sztStep;
      if constexpr (Kernel::kReads) {
        const Vectors<2> left = Load8(stPlace.pu8Ring);
        const Vectors<2> right = Load8(pu8Right);
        StoreFrames(stPlace.pu8Linear, stPlace.sztStep, sse2::Interleaved<4>(left.v[0], right.v[0]));
        StoreFrames(stPlace.pu8Linear + sztTail, stPlace.sztStep,
                    sse2::Interleaved<4>(left.v[1], right.v[1]));
      } else {
        const Vectors<2> head = LoadFrames(stPlace.pu8Linear, stPlace.sztStep);
        const Vectors<2> tail = LoadFrames(stPlace.pu8Linear + sztTail, stPlace.sztStep);
        Store8(stPlace.pu8Ring, head.v[0], tail.v[0]);
        Store8(pu8Right, head.v[1], tail.v[1]);
      }
      stPlace.Skip(kFrames);
    }
  }

 private:
  KEST_SSSE3 KEST_TILE_PART static void StoreFrames(uint8_t *pu8, size_t sztStep, const Vectors<2> &st) {
    if constexpr (kWholeFrames) return Store8(pu8, st.v[0], st.v[1]);
    StoreTwoPairs(pu8, sztStep, st.v[0]);
    StoreTwoPairs(pu8 + 2 * sztStep, sztStep, st.v[1]);
  }
  KEST_SSSE3 KEST_TILE_PART static Vectors<2> LoadFrames(const uint8_t *pu8, size_t sztStep) {
    if constexpr (kWholeFrames) {
      const Vectors<2> st = Load8(pu8);
      return sse2::Separated<4>(st.v[0], st.v[1]);
    }
    return sse2::Separated<4>(LoadTwoPairs(pu8, sztStep), LoadTwoPairs(pu8 + 2 * sztStep, sztStep));
  }
};

}  // namespace kest::ssse3

namespace kest {

template <typename Kernel>
struct FrameTile<Kernel, 8, false, If24<Kernel>> : ssse3::SquareTile<Kernel> {};
template <typename Kernel, bool kWholeFrames>
struct FrameTile<Kernel, 2, kWholeFrames, If24<Kernel>> : ssse3::PairTile<Kernel, kWholeFrames> {};

}  // namespace kest

#endif
