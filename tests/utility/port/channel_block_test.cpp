// SPDX-License-Identifier: Apache-2.0
#include "utility/port/channel_block.h"

#include "tests/support/ports.h"
#include "utility/port/sample_kernel.h"

namespace kest::test {
namespace {

constexpr size_t kRing = 173;  // samples

struct Shape {
  uint32_t channels, stride;
  size_t start, frames;
};

// Memory of that size and no more, at an odd address.
struct Odd {
  Odd(size_t sztBytes, uint32_t u32Seed) : all(Noise(sztBytes + 1, u32Seed)) {}
  uint8_t *Data() { return all.data() + 1; }
  Bytes all;
};

template <typename Kernel>
void MoveOneByOne(const Shape &s, uint8_t *pu8Rings, uint8_t *pu8Linear) {
  for (size_t i = 0; i < s.frames; ++i) {
    for (size_t k = 0; k < s.channels; ++k)
      Kernel::Move(pu8Rings + (k * kRing + (s.start + i) % kRing) * Kernel::kRingBytes,
                   pu8Linear + (i * s.stride + k) * Kernel::kLinearBytes);
  }
}

template <typename Kernel>
void ExpectLikeOneByOne(const Shape &s) {
  const size_t ringBytes = kRing * Kernel::kRingBytes;
  Odd rings(s.channels * ringBytes, 1);
  Odd linear((s.frames * s.stride - (s.stride - s.channels)) * Kernel::kLinearBytes, 2);
  Odd expectedRings = rings;
  Odd expectedLinear = linear;
  MoveOneByOne<Kernel>(s, expectedRings.Data(), expectedLinear.Data());
  MoveBlock<Kernel>(
      {rings.Data(), ringBytes, linear.Data(), s.stride, s.channels},
      PlanRing(ringBytes, s.start * Kernel::kRingBytes, s.frames * Kernel::kRingBytes, Kernel::kRingBytes));
  ASSERT_TRUE(rings.all == expectedRings.all && linear.all == expectedLinear.all)
      << s.channels << " channels of " << s.stride << ", " << s.frames << " frames from " << s.start;
}

template <typename Kernel>
class ChannelBlock : public testing::Test {};

using Kernels =
    testing::Types<ReadAsIs<2>, ReadAsIs<3>, ReadAsIs<4>, ReadShifted<4, 2, -16>, ReadShifted<2, 4, 8>,
                   ReadShifted<4, 4, -8>, ReadShifted<2, 4, 16>, WriteAsIs<2>, WriteAsIs<3>, WriteAsIs<4>>;
TYPED_TEST_SUITE(ChannelBlock, Kernels);

}  // namespace

TYPED_TEST(ChannelBlock, MovesEveryShapeAsOneByOneAndTouchesNothingElse) {
  for (uint32_t channels = 1; channels <= 10; ++channels) {
    for (const uint32_t more : {0u, 1u, 5u}) {
      for (const size_t frames : {1u, 3u, 4u, 7u, 8u, 9u, 17u, 31u, 32u, 40u, 67u, 129u, 150u, 173u}) {
        for (const size_t start : {size_t{0}, kRing - 6, kRing - 35})
          ASSERT_NO_FATAL_FAILURE(ExpectLikeOneByOne<TypeParam>({channels, channels + more, start, frames}));
      }
    }
  }
}

}  // namespace kest::test
