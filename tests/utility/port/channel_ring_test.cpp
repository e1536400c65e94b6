// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace kest::test {
namespace {

// What the conversions make of a sample, byte by byte; no bytes where they handle no such width.
using Convert = Bytes (*)(const Bytes &);

Bytes AsIs(const Bytes &s) {
  return s.size() >= 2 && s.size() <= 4 ? s : Bytes{};
}
Bytes To16(const Bytes &s) {
  return s.size() == 4 ? Bytes{s[2], s[3]} : s.size() == 2 ? s : Bytes{};
}
Bytes To24Le(const Bytes &s) {
  return s.size() == 4 ? Bytes{s[1], s[2], s[3], 0} : s.size() == 2 ? Bytes{0, s[0], s[1], 0} : Bytes{};
}
Bytes To32(const Bytes &s) {
  return s.size() == 4 ? s : s.size() == 2 ? Bytes{0, 0, s[0], s[1]} : Bytes{};
}

struct Routine {
  uint32_t (*pfnRead)(const uint8_t *, const uint8_t *, uint32_t, uint8_t *, uint64_t, uint32_t, uint32_t);
  Convert pfnConvert;
};
constexpr Routine kRoutines[] = {{nullptr, AsIs},  // the write
                                 {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer, AsIs},
                                 {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To16Bit, To16},
                                 {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To24Le, To24Le},
                                 {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To32Bit, To32}};

struct Move {
  size_t pos;
  uint64_t bytes;
  uint32_t stride, width;
};

// Bytes beyond the ring's end are not written, and read as zero.
void ModelSample(const Routine &routine, Bytes &ring, size_t at, uint8_t *pu8Linear, size_t width) {
  Bytes sample(width);
  for (size_t j = 0; j < width && at + j < ring.size(); ++j)
    (routine.pfnRead ? sample[j] : ring[at + j]) = routine.pfnRead ? ring[at + j] : pu8Linear[j];
  const Bytes converted = routine.pfnConvert(sample);
  if (routine.pfnRead) std::copy(converted.begin(), converted.end(), pu8Linear);
}

// Byte by byte and sample by sample; the second segment goes on with the counter of the first one.
void Model(const Routine &routine, const Move &move, Bytes &ring, Bytes &linear) {
  const size_t linearWidth = routine.pfnConvert(Bytes(move.width)).size();
  if (move.pos > ring.size()) return;
  for (size_t i = 0; move.stride == 1 && i < std::min<uint64_t>(move.bytes, 2 * ring.size() - move.pos);
       ++i) {
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
  Bytes linear = Noise(size_t{60} * std::max(move.stride, 1u), 2);
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
        for (size_t i = 0; i < 450; ++i) {
          const uint64_t bytes = i / 15 == 29 ? (uint64_t{1} << 32) + 2 : i / 15;
          ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(routine, {i % 15, bytes, stride, width}));
        }
      }
    }
  }
}

}  // namespace kest::test
