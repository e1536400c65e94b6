// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace kest::test {
namespace {

constexpr uint32_t kSrcRing = 5;  // samples
constexpr uint32_t kDstRing = 7;

struct Copy {
  uint32_t group, bits, channels, srcAt, dstAt, samples;
};

// Slot 1 of the source carries no channel; a position beyond two laps lies outside.
void Model(const Copy &c, Bytes &dst, const Bytes &src) {
  const size_t width = c.bits / 8;
  if (c.srcAt > 2 * kSrcRing || c.dstAt > 2 * kDstRing) return;
  for (uint32_t k = 0; k < std::min(c.channels, sztPcmGroupChNumber[c.group]); ++k) {
    for (uint32_t i = 0; i < std::min(c.samples, kSrcRing) && k != 1; ++i) {
      const size_t from = (k * kSrcRing + (c.srcAt + i) % kSrcRing) * width;
      const size_t to = (k * kDstRing + (c.dstAt + i) % kDstRing) * width;
      std::copy_n(&src[from], width, &dst[to]);
    }
  }
}

// Half of every position is the offset; the destination's map names no channel. srcBits, dstBits: what the
// formats say; a destination that says less than the source takes nothing.
void ExpectLikeModel(const Copy &c, uint32_t srcBits, uint32_t dstBits) {
  std::array<uint32_t, 3> slots = {};
  slots[c.group] = sztPcmGroupChNumber[c.group];
  Port src, dst;
  src.Pcm(c.bits, kSrcRing, slots).sztPcmReadOffset = c.srcAt / 2;
  dst.Pcm(c.bits, kDstRing, slots).sztPcmReadOffset = c.dstAt / 2;
  src.st.stPcm.stPcmInfo.u32BitWidth = srcBits;
  dst.st.stPcm.stPcmInfo.u32BitWidth = dstBits;
  src.st.stPcm.astPcmGroup[c.group].u32ChannelCount = c.channels;
  src.st.stPcm.astPcmGroup[c.group].as32ChMap[1] = -1;
  std::fill_n(dst.st.stPcm.astPcmGroup[c.group].as32ChMap, ZE_KEST_PCM_GROUP_SLOTS, -1);
  Bytes expected = dst.groups[c.group].Content();
  if (dstBits == 0 || srcBits <= dstBits) Model(c, expected, src.groups[c.group].Content());
  ASSERT_EQ(0u,
            ze_kest_Utility_CopyNonInterleavePcmBuffer(&dst.st.stPcm, &src.st.stPcm, c.dstAt - c.dstAt / 2,
                                                       c.srcAt - c.srcAt / 2, c.samples, c.group));
  ASSERT_EQ(expected, dst.groups[c.group].Content())
      << "group " << c.group << ", " << srcBits << " to " << dstBits << " bits, " << c.channels
      << " channels, " << c.samples << " samples from " << c.srcAt << " to " << c.dstAt;
}

}  // namespace

TEST(NonInterleavedCopy, TheSourcesChannelsLandInOrderFromAndToEveryPosition) {
  for (uint32_t i = 0; i < 12 * 16; ++i) {
    for (const uint32_t samples : {0u, 1u, 3u, 5u, 6u, 20u}) {
      for (const uint32_t channels : {0u, 1u, 2u, 9u, 11u}) {
        const uint32_t bits = 16 + i % 3 * 8;
        const Copy c = {(i + samples) % 3, bits, channels, i % 12, i / 12, samples};
        ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(c, bits, bits));
      }
    }
  }
}

TEST(NonInterleavedCopy, AFormatWithoutAWidthCountsAs16BitsOrAsTheSourceAndATooNarrowOneTakesNothing) {
  ExpectLikeModel({1, 16, 10, 4, 5, 5}, 0, 0);
  ExpectLikeModel({1, 16, 10, 4, 5, 5}, 0, 16);
  ExpectLikeModel({1, 32, 10, 4, 5, 5}, 32, 0);
  ExpectLikeModel({1, 32, 10, 4, 5, 5}, 32, 16);
}

}  // namespace kest::test
