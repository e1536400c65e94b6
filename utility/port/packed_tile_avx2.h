// SPDX-License-Identifier: Apache-2.0
// Tiles for packed 24-bit samples on x86-64 processors with AVX2. The samples are expanded to 32 bits, moved
// as such, and packed again.
#pragma once

#include "utility/port/avx2_lanes.h"

#ifdef __x86_64__

#include <cstring>

namespace kest::avx2 {

// Each lane covers eight consecutive packed samples, that is 24 bytes. Loads the first four of them or the
// last four, expanded to 32 bits.
template <bool kLast>
KEST_LANES __m256i LoadFour(const uint8_t *pu8, size_t sztLane) {
  if constexpr (kLast) {
    return ShuffleBytes(LoadLanes(pu8 + 8, sztLane),
                        _mm_setr_epi8(4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1));
  }
  return ShuffleBytes(LoadLanes(pu8, sztLane),
                      _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1));
}
KEST_LANES void StoreEight(uint8_t *pu8, size_t sztLane, __m256i head, __m256i tail) {
  const __m256i first12 =
      ShuffleBytes(head, _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
  // The first four bytes go to the end, where the blend below picks them; the other eight go to the start.
  const __m256i last12 =
      ShuffleBytes(tail, _mm_setr_epi8(5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1, 0, 1, 2, 4));
  StoreLanes(pu8, sztLane, _mm256_blend_epi32(first12, last12, 0x88));
  StoreHalf(pu8 + 16, FirstLane(last12));
  StoreHalf(pu8 + sztLane + 16, SecondLane(last12));
}

// Lines of a tile, either rings or frames; each lane holds eight samples of a line.
template <typename Byte>
struct Lines {
  Byte *pu8;
  size_t sztPitch;
  size_t sztLane;

  [[nodiscard]] KEST_LANES Byte *At(size_t sztLine) const { return pu8 + sztLine * sztPitch; }
};

// Eight packed channels, with eight frames in each lane. Moved in two halves, because only half of the
// samples fit into the registers.
template <typename Kernel, size_t... kLines>
struct PackedSquareTile {
  static constexpr size_t kFrames = 16;

  KEST_LANES static void Move(const FramePlace<Kernel> &stPlace) {
    const Lines<typename Kernel::Ring> stRings = {stPlace.pu8Ring, stPlace.sztRingPitch, 24};
    const Lines<typename Kernel::Linear> stFrames = {stPlace.pu8Linear, stPlace.sztStep, 8 * stPlace.sztStep};
    if constexpr (Kernel::kReads) {
      MoveHalf<false>(stRings, stFrames);
      MoveHalf<true>(stRings, stFrames);
    } else {
      MoveHalf<false>(stFrames, stRings);
      MoveHalf<true>(stFrames, stRings);
    }
  }

 private:
  template <bool kLast>
  KEST_LANES static void MoveHalf(const Lines<const uint8_t> &stFrom, const Lines<uint8_t> &stTo) {
    const Vectors<4> a = Transposed(Vectors<4>{{LoadFour<kLast>(stFrom.At(kLines), stFrom.sztLane)...}});
    const Vectors<4> b = Transposed(Vectors<4>{{LoadFour<kLast>(stFrom.At(4 + kLines), stFrom.sztLane)...}});
    constexpr size_t kFirst = kLast ? 4 : 0;
    (StoreEight(stTo.At(kFirst + kLines), stTo.sztLane, a.v[kLines], b.v[kLines]), ...);
  }
};

// Two packed samples, moved in two pieces of constant size, because a memcpy of six bytes goes through memory
// twice.
KEST_TILE_PART void StorePair24(uint8_t *pu8, int64_t s64Pair) {
  const auto u32Head = static_cast<uint32_t>(s64Pair);
  const auto u16Tail = static_cast<uint16_t>(s64Pair >> 32);
  memcpy(pu8, &u32Head, sizeof u32Head);
  memcpy(pu8 + sizeof u32Head, &u16Tail, sizeof u16Tail);
}
KEST_TILE_PART int64_t LoadPair24(const uint8_t *pu8) {
  uint32_t u32Head;
  uint16_t u16Tail;
  memcpy(&u32Head, pu8, sizeof u32Head);
  memcpy(&u16Tail, pu8 + sizeof u32Head, sizeof u16Tail);
  return static_cast<int64_t>(u32Head | uint64_t{u16Tail} << 32);
}

// Four packed pairs of samples in each lane.
template <bool kWholeFrames>
struct PackedPairs {
  size_t sztStep;
  size_t sztLane;

  KEST_LANES void StoreFrames(uint8_t *pu8, const Vectors<2> &st) const {
    if constexpr (kWholeFrames) return StoreEight(pu8, sztLane, st.v[0], st.v[1]);
    StoreTwo(pu8, FirstLane(st.v[0]));
    StoreTwo(pu8 + 2 * sztStep, FirstLane(st.v[1]));
    StoreTwo(pu8 + sztLane, SecondLane(st.v[0]));
    StoreTwo(pu8 + sztLane + 2 * sztStep, SecondLane(st.v[1]));
  }
  [[nodiscard]] KEST_LANES Vectors<2> LoadFrames(const uint8_t *pu8) const {
    if constexpr (kWholeFrames) return {{LoadFour<false>(pu8, sztLane), LoadFour<true>(pu8, sztLane)}};
    return {{_mm256_set_m128i(LoadTwo(pu8 + sztLane), LoadTwo(pu8)),
             _mm256_set_m128i(LoadTwo(pu8 + sztLane + 2 * sztStep), LoadTwo(pu8 + 2 * sztStep))}};
  }

 private:
  KEST_LANES void StoreTwo(uint8_t *pu8, __m128i v) const {
    const __m128i packed =
        _mm_shuffle_epi8(v, _mm_setr_epi8(0, 1, 2, 4, 5, 6, -1, -1, 8, 9, 10, 12, 13, 14, -1, -1));
    StorePair24(pu8, _mm_cvtsi128_si64(packed));
    StorePair24(pu8 + sztStep, _mm_extract_epi64(packed, 1));
  }
  [[nodiscard]] KEST_LANES __m128i LoadTwo(const uint8_t *pu8) const {
    return _mm_shuffle_epi8(_mm_set_epi64x(LoadPair24(pu8 + sztStep), LoadPair24(pu8)),
                            _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 8, 9, 10, -1, 11, 12, 13, -1));
  }
};

template <typename Kernel, bool kWholeFrames>
struct PackedPairTile {
  static constexpr size_t kFrames = 16;

  KEST_LANES static void Move(const FramePlace<Kernel> &stPlace) {
    auto *const pu8Left = stPlace.pu8Ring;
    auto *const pu8Right = stPlace.RingOf(1);
    auto *const pu8Tail = stPlace.Frame(4);
    const PackedPairs<kWholeFrames> stPairs = {stPlace.sztStep, 8 * stPlace.sztStep};
    if constexpr (Kernel::kReads) {
      stPairs.StoreFrames(stPlace.pu8Linear,
                          Interleaved<4>(LoadFour<false>(pu8Left, 24), LoadFour<false>(pu8Right, 24)));
      stPairs.StoreFrames(pu8Tail, Interleaved<4>(LoadFour<true>(pu8Left, 24), LoadFour<true>(pu8Right, 24)));
    } else {
      const Vectors<2> head = Separated<4>(stPairs.LoadFrames(stPlace.pu8Linear));
      const Vectors<2> tail = Separated<4>(stPairs.LoadFrames(pu8Tail));
      StoreEight(pu8Left, 24, head.v[0], tail.v[0]);
      StoreEight(pu8Right, 24, head.v[1], tail.v[1]);
    }
  }
};

}  // namespace kest::avx2

namespace kest {

template <typename Kernel>
struct FrameTile<Kernel, 8, false, If24<Kernel>>
    : avx2::Repeated<avx2::PackedSquareTile<Kernel, 0, 1, 2, 3>> {};
template <typename Kernel, bool kWholeFrames>
struct FrameTile<Kernel, 2, kWholeFrames, If24<Kernel>>
    : avx2::Repeated<avx2::PackedPairTile<Kernel, kWholeFrames>> {};

}  // namespace kest

#endif
