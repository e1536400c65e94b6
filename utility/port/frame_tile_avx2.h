// SPDX-License-Identifier: Apache-2.0
// Tiles for 16-bit and 32-bit samples on x86-64 processors with AVX2.
#pragma once

#include "utility/port/avx2_lanes.h"

#ifdef __x86_64__

namespace kest::avx2 {

// Each lane holds as many frames as there are channels.
template <typename Kernel, size_t... kLines>
struct SquareTile {
  static constexpr size_t kLaneFrames = sizeof...(kLines);
  static constexpr size_t kFrames = 2 * kLaneFrames;

  KEST_LANES static void Move(const FramePlace<Kernel> &stPlace) {
    const size_t sztLane = kLaneFrames * stPlace.sztStep;
    if constexpr (Kernel::kReads) {
      const Vectors<kLaneFrames> st =
          Transposed(Vectors<kLaneFrames>{{ReadRow<Kernel>(stPlace.RingOf(kLines))...}});
      (StoreLanes(stPlace.Frame(kLines), sztLane, st.v[kLines]), ...);
    } else {
      const Vectors<kLaneFrames> st =
          Transposed(Vectors<kLaneFrames>{{LoadLanes(stPlace.Frame(kLines), sztLane)...}});
      (StoreWhole(stPlace.RingOf(kLines), st.v[kLines]), ...);
    }
  }
};

// Reads eight channels of 32 bits, four in each lane, so that a whole frame is stored at once.
template <typename Kernel, size_t... kLines>
struct WideTile {
  static constexpr size_t kFrames = 4;

  KEST_LANES static void Move(const FramePlace<Kernel> &stPlace) {
    const size_t sztLane = 4 * stPlace.sztRingPitch;
    const Vectors<4> st = Transposed(Vectors<4>{{ReadRow<Kernel>(stPlace.RingOf(kLines), sztLane)...}});
    (StoreWhole(stPlace.Frame(kLines), st.v[kLines]), ...);
  }
};

// Four channels of 16 bits, with eight frames in each lane.
template <typename Kernel, size_t... kLines>
struct FourTile {
  static constexpr size_t kFrames = 16;

  KEST_LANES static void Move(const FramePlace<Kernel> &stPlace) {
    if constexpr (Kernel::kReads) {
      Read(stPlace);
    } else {
      Write(stPlace);
    }
  }

 private:
  KEST_LANES static void Read(const FramePlace<Kernel> &stPlace) {
    const Vectors<4> st = {{ReadRow<Kernel>(stPlace.pu8Ring), ReadRow<Kernel>(stPlace.RingOf(1)),
                            ReadRow<Kernel>(stPlace.RingOf(2)), ReadRow<Kernel>(stPlace.RingOf(3))}};
    const __m256i a0 = _mm256_unpacklo_epi16(st.v[0], st.v[1]);
    const __m256i a1 = _mm256_unpackhi_epi16(st.v[0], st.v[1]);
    const __m256i b0 = _mm256_unpacklo_epi16(st.v[2], st.v[3]);
    const __m256i b1 = _mm256_unpackhi_epi16(st.v[2], st.v[3]);
    StoreTwo(stPlace, 0, _mm256_unpacklo_epi32(a0, b0));
    StoreTwo(stPlace, 2, _mm256_unpackhi_epi32(a0, b0));
    StoreTwo(stPlace, 4, _mm256_unpacklo_epi32(a1, b1));
    StoreTwo(stPlace, 6, _mm256_unpackhi_epi32(a1, b1));
  }
  // Stores two frames of each lane.
  KEST_LANES static void StoreTwo(const FramePlace<Kernel> &stPlace, size_t sztFrame, __m256i v) {
    uint8_t *const pu8 = stPlace.Frame(sztFrame);
    uint8_t *const pu8Second = pu8 + 8 * stPlace.sztStep;
    StoreHalf(pu8, FirstLane(v));
    StoreHalf(pu8 + stPlace.sztStep, HighHalf(FirstLane(v)));
    StoreHalf(pu8Second, SecondLane(v));
    StoreHalf(pu8Second + stPlace.sztStep, HighHalf(SecondLane(v)));
  }

  KEST_LANES static void Write(const FramePlace<Kernel> &stPlace) {
    const Vectors<8> st = {
        {_mm256_set_m128i(LoadHalf(stPlace.Frame(8 + kLines)), LoadHalf(stPlace.Frame(kLines)))...}};
    const Vectors<4> rows = Transposed(
        Vectors<4>{{_mm256_unpacklo_epi16(st.v[0], st.v[1]), _mm256_unpacklo_epi16(st.v[2], st.v[3]),
                    _mm256_unpacklo_epi16(st.v[4], st.v[5]), _mm256_unpacklo_epi16(st.v[6], st.v[7])}});
    for (size_t sztRow = 0; sztRow < 4; ++sztRow)
      StoreWhole(stPlace.RingOf(sztRow), rows.v[sztRow]);
  }
};

// Reads whole frames of ten 16-bit channels. Storing across frame boundaries avoids stores of only a few
// bytes.
template <typename Kernel, size_t... kLines>
struct TenTile {
  static constexpr size_t kFrames = 16;

  KEST_LANES static void Move(const FramePlace<Kernel> &stPlace) {
    const Vectors<8> st = Transposed(Vectors<8>{{ReadRow<Kernel>(stPlace.RingOf(kLines))...}});
    const __m256i ninth = ReadRow<Kernel>(stPlace.RingOf(8));
    const __m256i tenth = ReadRow<Kernel>(stPlace.RingOf(9));
    StoreFour(stPlace.pu8Linear, {{st.v[0], st.v[1], st.v[2], st.v[3]}}, _mm256_unpacklo_epi16(ninth, tenth));
    StoreFour(stPlace.pu8Linear + 4 * kFrameBytes, {{st.v[4], st.v[5], st.v[6], st.v[7]}},
              _mm256_unpackhi_epi16(ninth, tenth));
  }

 private:
  static constexpr size_t kFrameBytes = 20;
  static constexpr size_t kLane = 8 * kFrameBytes;

  // Stores four frames of each lane. st holds the first eight channels, one frame per vector; last holds the
  // last two channels of all four frames.
  KEST_LANES static void StoreFour(uint8_t *pu8, const Vectors<4> &st, __m256i last) {
    StoreLanes(pu8, kLane, st.v[0]);
    StoreLanes(pu8 + 16, kLane,
               _mm256_blend_epi32(_mm256_shuffle_epi32(st.v[1], _MM_SHUFFLE(2, 1, 0, 0)), last, 0x11));
    StoreLanes(pu8 + 32, kLane,
               _mm256_blend_epi32(Shuffle32<_MM_SHUFFLE(1, 0, 0, 3)>(st.v[1], st.v[2]), last, 0x22));
    StoreLanes(pu8 + 48, kLane,
               _mm256_blend_epi32(Shuffle32<_MM_SHUFFLE(0, 0, 3, 2)>(st.v[2], st.v[3]), last, 0x44));
    StoreLanes(pu8 + 64, kLane,
               _mm256_blend_epi32(_mm256_shuffle_epi32(st.v[3], _MM_SHUFFLE(0, 3, 2, 1)), last, 0x88));
  }
};

// Stores one pair of samples to each of consecutive frames.
template <size_t kBytes>
KEST_LANES void StorePairs(uint8_t *pu8, size_t sztStep, __m128i v) {
  if constexpr (kBytes == 2) {
    _mm_storeu_si32(pu8, v);
    _mm_storeu_si32(pu8 + sztStep, _mm_shuffle_epi32(v, 1));
    _mm_storeu_si32(pu8 + 2 * sztStep, _mm_shuffle_epi32(v, 2));
    _mm_storeu_si32(pu8 + 3 * sztStep, _mm_shuffle_epi32(v, 3));
  } else {
    StoreHalf(pu8, v);
    StoreHalf(pu8 + sztStep, HighHalf(v));
  }
}
template <size_t kBytes>
KEST_LANES __m128i LoadPairs(const uint8_t *pu8, size_t sztStep) {
  if constexpr (kBytes == 2) {
    return _mm_unpacklo_epi64(
        _mm_unpacklo_epi32(_mm_loadu_si32(pu8), _mm_loadu_si32(pu8 + sztStep)),
        _mm_unpacklo_epi32(_mm_loadu_si32(pu8 + 2 * sztStep), _mm_loadu_si32(pu8 + 3 * sztStep)));
  }
  return _mm_unpacklo_epi64(LoadHalf(pu8), LoadHalf(pu8 + sztStep));
}

template <typename Kernel, bool kWholeFrames>
struct PairTile {
  static constexpr size_t kBytes = Kernel::kLinearBytes;
  static constexpr size_t kFrames = 32 / kBytes;

  KEST_LANES static void Move(const FramePlace<Kernel> &stPlace) {
    auto *const pu8Right = stPlace.RingOf(1);
    if constexpr (Kernel::kReads) {
      StoreFrames(stPlace, Interleaved<kBytes>(ReadRow<Kernel>(stPlace.pu8Ring), ReadRow<Kernel>(pu8Right)));
    } else {
      const Vectors<2> st = Separated<kBytes>(LoadFrames(stPlace));
      StoreWhole(stPlace.pu8Ring, st.v[0]);
      StoreWhole(pu8Right, st.v[1]);
    }
  }

 private:
  KEST_LANES static void StoreFrames(const FramePlace<Kernel> &stPlace, const Vectors<2> &st) {
    uint8_t *const pu8 = stPlace.pu8Linear;
    if constexpr (kWholeFrames) {
      StoreWhole(pu8, _mm256_permute2x128_si256(st.v[0], st.v[1], 0x20));
      StoreWhole(pu8 + 32, _mm256_permute2x128_si256(st.v[0], st.v[1], 0x31));
    } else {
      const size_t sztQuarter = kFrames / 4 * stPlace.sztStep;
      StorePairs<kBytes>(pu8, stPlace.sztStep, FirstLane(st.v[0]));
      StorePairs<kBytes>(pu8 + sztQuarter, stPlace.sztStep, FirstLane(st.v[1]));
      StorePairs<kBytes>(pu8 + 2 * sztQuarter, stPlace.sztStep, SecondLane(st.v[0]));
      StorePairs<kBytes>(pu8 + 3 * sztQuarter, stPlace.sztStep, SecondLane(st.v[1]));
    }
  }
  KEST_LANES static Vectors<2> LoadFrames(const FramePlace<Kernel> &stPlace) {
    const uint8_t *const pu8 = stPlace.pu8Linear;
    if constexpr (kWholeFrames) {
      return {{LoadLanes(pu8, 32), LoadLanes(pu8 + 16, 32)}};
    } else {
      const size_t sztQuarter = kFrames / 4 * stPlace.sztStep;
      return {{_mm256_set_m128i(LoadPairs<kBytes>(pu8 + 2 * sztQuarter, stPlace.sztStep),
                                LoadPairs<kBytes>(pu8, stPlace.sztStep)),
               _mm256_set_m128i(LoadPairs<kBytes>(pu8 + 3 * sztQuarter, stPlace.sztStep),
                                LoadPairs<kBytes>(pu8 + sztQuarter, stPlace.sztStep))}};
    }
  }
};

}  // namespace kest::avx2

namespace kest {

template <typename Kernel>
struct FrameTile<Kernel, 8, false, IfOf16<Kernel>>
    : avx2::Repeated<avx2::SquareTile<Kernel, 0, 1, 2, 3, 4, 5, 6, 7>> {};
template <typename Kernel>
struct FrameTile<Kernel, 4, false, IfOf16<Kernel>>
    : avx2::Repeated<avx2::FourTile<Kernel, 0, 1, 2, 3, 4, 5, 6, 7>> {};
template <typename Kernel>
struct FrameTile<Kernel, 10, true, std::enable_if_t<Kernel::kReads && Kernel::kLinearBytes == 2>>
    : avx2::Repeated<avx2::TenTile<Kernel, 0, 1, 2, 3, 4, 5, 6, 7>> {};
template <typename Kernel>
struct FrameTile<Kernel, 8, false, std::enable_if_t<Kernel::kReads && Kernel::kLinearBytes == 4>>
    : avx2::Repeated<avx2::WideTile<Kernel, 0, 1, 2, 3>> {};
template <typename Kernel>
struct FrameTile<Kernel, 4, false, IfOf32<Kernel>> : avx2::Repeated<avx2::SquareTile<Kernel, 0, 1, 2, 3>> {};
template <typename Kernel, bool kWholeFrames>
struct FrameTile<Kernel, 2, kWholeFrames, IfNot24<Kernel>>
    : avx2::Repeated<avx2::PairTile<Kernel, kWholeFrames>> {};

}  // namespace kest

#endif
