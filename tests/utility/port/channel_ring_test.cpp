// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/support/sample_model.h"

namespace {

using kest::test::Bytes;
using kest::test::Guarded;
using kest::test::Noise;

struct Routine {
  uint32_t (*pfnRead)(const uint8_t *, const uint8_t *, uint32_t, uint8_t *, uint64_t, uint32_t, uint32_t);
  kest::test::Convert pfnConvert;
};
constexpr Routine kRoutines[] = {
    {nullptr, kest::test::AsIs},  // the write
    {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer, kest::test::AsIs},
    {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To16Bit, kest::test::To16},
    {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To24Le, kest::test::To24Le},
    {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To32Bit, kest::test::To32}};

struct Move {
  size_t pos, bytes;
  uint32_t stride, width;
};

// Bytes beyond the ring's end are not written, and read as zero.
void ModelSample(const Routine &routine, Bytes &ring, size_t at, uint8_t *pu8Linear, size_t width) {
  Bytes sample(width);
  for (size_t j = 0; j < width && at + j < ring.size(); ++j) {
    (routine.pfnRead ? sample[j] : ring[at + j]) = routine.pfnRead ? ring[at + j] : pu8Linear[j];
  }
  const Bytes converted = routine.pfnConvert(sample);
  if (routine.pfnRead) std::copy(converted.begin(), converted.end(), pu8Linear);
}

// Byte by byte and sample by sample; the second segment goes on with the counter of the first one.
void Model(const Routine &routine, const Move &move, Bytes &ring, Bytes &linear) {
  const size_t linearWidth = routine.pfnConvert(Bytes(move.width)).size();
  if (move.pos > ring.size()) return;
  for (size_t i = 0; move.stride == 1 && i < std::min(move.bytes, 2 * ring.size() - move.pos); ++i) {
    uint8_t &u8Ring = ring[(move.pos + i) % ring.size()];
    (routine.pfnRead ? linear[i] : u8Ring) = routine.pfnRead ? u8Ring : linear[i];
  }
  if (move.stride == 1 || linearWidth == 0) return;
  uint8_t *pu8Linear = linear.data();
  size_t counter = 0;
  for (size_t at : {move.pos, size_t{0}}) {
    for (; counter < move.bytes && at < ring.size(); at += move.width, counter += move.width) {
      ModelSample(routine, ring, at, pu8Linear, move.width);
      pu8Linear += move.stride * linearWidth;
    }
  }
}

void ExpectLikeModel(const Routine &routine, const Move &move) {
  Bytes ring = Noise(13, 1);
  Bytes linear = Noise(60 * std::max(move.stride, 1u), 2);
  Guarded ownRing(ring);
  Guarded ownLinear(linear);
  Model(routine, move, ring, linear);
  uint8_t *pu8Pos = ownRing.Data() + move.pos;
  if (routine.pfnRead) {
    routine.pfnRead(ownRing.Data(), pu8Pos, 13, ownLinear.Data(), move.bytes, move.stride, move.width);
  } else {
    ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(ownRing.Data(), pu8Pos, 13, ownLinear.Data(),
                                                       move.bytes, move.stride, move.width);
  }
  ASSERT_TRUE(ownRing.Content() == ring && ownLinear.Content() == linear)
      << "routine " << (&routine - kRoutines) << " position " << move.pos << " bytes " << move.bytes
      << " stride " << move.stride << " width " << move.width;
}

}  // namespace

// Positions between samples, at the end and beyond it, partial samples, amounts beyond the ring, widths that
// are not handled.
TEST(ChannelRing, MovesWhatTheModelMovesFromEveryPosition) {
  for (const Routine &routine : kRoutines) {
    for (const uint32_t width : {1u, 2u, 3u, 4u, 5u}) {
      for (uint32_t stride = 0; stride <= 11; ++stride) {
        for (size_t i = 0; i < size_t{15 * 30}; ++i) {
          ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(routine, {i % 15, i / 15, stride, width}));
        }
      }
    }
  }
}

TEST(ChannelRing, NothingFarOutsideIsTouched) {
  Guarded ring(Noise(8, 8));
  const Bytes linear(8 * 4, 0x11);
  const auto write = [&](uint8_t *pu8Pos, uint64_t u64Bytes) {
    ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(ring.Data(), pu8Pos, 8, linear.data(), u64Bytes, 2, 2);
    return ring.Content();
  };
  EXPECT_EQ(Noise(8, 8), write(ring.Data() - 2, 4));
  EXPECT_EQ(Noise(8, 8), write(ring.Data() + 10, 4));
  EXPECT_EQ(Bytes(8, 0x11), write(ring.Data() + 4, UINT64_MAX));
}
