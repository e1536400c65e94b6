// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/support/ports.h"

namespace {

using kest::test::Bytes;
using kest::test::Filter;
using kest::test::Noise;

constexpr uint32_t kSamples = 253;  // of the largest write

// A source of noise for every entry, with a stride of its own.
template <typename Sample>
struct Sources {
  Sources() {
    for (uint32_t entry = 0; entry < ZE_KEST_PCM_CHANNEL_ENTRIES; ++entry) {
      noise.push_back(Noise(kSamples * 11 * sizeof(Sample), entry + 50));
      apSrc[entry] = static_cast<Sample *>(static_cast<void *>(noise[entry].data()));
      au16Stride[entry] = static_cast<uint16_t>(entry % 11 + 1);
    }
  }
  uint32_t Write(ZE_KEST_Filter_s *pstFilter, uint32_t samples) const {
    if constexpr (sizeof(Sample) == 2) {
      return ze_kest_Utility_WriteOutputPort16BitPcmBuffer(pstFilter, 0, samples, apSrc, au16Stride);
    } else {
      return ze_kest_Utility_WriteOutputPort32BitPcmBuffer(pstFilter, 0, samples, apSrc, au16Stride);
    }
  }
  std::vector<Bytes> noise;
  Sample *apSrc[ZE_KEST_PCM_CHANNEL_ENTRIES];
  uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES];
};

// The storage of a group after a write; straight: without wrap-around.
template <typename Sample>
Bytes Model(const Sources<Sample> &sources, const kest::test::Port &port, uint32_t group, uint32_t samples,
            bool bStraight) {
  const ZE_KEST_PcmBuffer_s &pcm = port.st.stPcm;
  const uint32_t width = pcm.stPcmInfo.u32BitWidth / 8;
  const uint32_t ring = pcm.sztPcmRingSamples;
  const uint32_t position = (pcm.sztPcmLevel + pcm.sztPcmReadOffset) % ring;
  Bytes storage = port.groups[group].Content();
  for (uint32_t slot = 0; slot < pcm.astPcmGroup[group].u32ChannelCount; ++slot) {
    const uint32_t entry = 12 * group + slot;
    if (sources.apSrc[entry] == nullptr || pcm.astPcmGroup[group].as32ChMap[slot] == -1) continue;
    for (uint32_t byte = 0; byte < samples * width; ++byte) {
      const uint32_t at = bStraight ? position + byte / width : (position + byte / width) % ring;
      storage[(slot * ring + at) * width + byte % width] =
          sources.noise[entry][byte / width * sources.au16Stride[entry] * width + byte % width];
    }
  }
  return storage;
}

template <typename Sample>
void ExpectLikeModel(Filter &filter, uint32_t samples, const Sources<Sample> &sources, bool bStraight) {
  const kest::test::Port &port = filter.Out(0);
  Bytes expected[3];
  for (uint32_t g = 0; g < 3; ++g)
    expected[g] = Model(sources, port, g, samples, bStraight);
  ASSERT_EQ(ZE_KEST_OK, sources.Write(filter, samples));
  for (uint32_t g = 0; g < 3; ++g) {
    ASSERT_EQ(expected[g], port.groups[g].Content())
        << port.st.stPcm.stPcmInfo.u32BitWidth << " bits, group " << g << ", " << samples << " samples at "
        << port.st.stPcm.sztPcmReadOffset << '+' << port.st.stPcm.sztPcmLevel;
  }
  EXPECT_EQ(0u, port.st.stPcm.sztPcmWriteSize) << "a write commits nothing";
}

template <typename Sample>
void SweepPositions(uint32_t bits) {
  Sources<Sample> sources;
  sources.apSrc[14] = nullptr;
  for (const uint32_t ring : {5u, 254u}) {
    Filter filter;
    ZE_KEST_PcmBuffer_s &pcm = filter.Out(0).Pcm(bits, ring, {2, 10, 10});
    pcm.astPcmGroup[1].as32ChMap[5] = -1;
    pcm.sztPcmLevel = 2;
    for (; pcm.sztPcmReadOffset < ring; pcm.sztPcmReadOffset += ring / 4) {
      for (const uint32_t samples : {0u, 1u, std::min(ring, kSamples)}) {
        ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(filter, samples, sources, false));
      }
    }
  }
}

}  // namespace

TEST(OutputPcm, EverySourceLandsInItsRingAtEveryWritePosition) {
  SweepPositions<int16_t>(16);
  SweepPositions<int32_t>(24);
  SweepPositions<int32_t>(32);
}

TEST(OutputPcm, OnlyTheOptionWithABoundWritesStraightOn) {
  for (const uint32_t bound : {ZE_KEST_NO_BOUND, 64u}) {
    for (const unsigned option : {0x00u, 0xFBu, 0x04u}) {
      Filter filter;
      // The last slot of a group gets nothing: the one before it may run on into its ring.
      ZE_KEST_PcmBuffer_s &pcm = filter.Out(0).Pcm(16, 8, {2, 10, 10});
      for (ZE_KEST_PcmGroup_s &group : pcm.astPcmGroup)
        group.as32ChMap[group.u32ChannelCount - 1] = -1;
      pcm.sztPcmReadOffset = pcm.sztPcmLevel = 7;
      filter.st->sztMaxOutPcmProcessSize = bound;
      filter.st->u8Option = static_cast<uint8_t>(option);
      const bool bStraight = bound == 64 && option == 0x04;
      ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(filter, 5, Sources<int16_t>(), bStraight)) << option;
    }
  }
}

TEST(OutputPcm, AWriteToAllPassesOverPortsThatCannotBeWritten) {
  Filter filter;
  for (const uint32_t slot : {0u, 1u, 3u})
    filter.Out(slot).Pcm(32, 4, {2, 0, 0});
  filter.Out(0).st.bConnected = filter.Out(1).st.bConnected = 0;
  const Bytes before = filter.Out(1).groups[0].Content();
  const Sources<int32_t> s;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(filter, 4, s.apSrc, s.au16Stride));
  EXPECT_NE(before, filter.Out(0).groups[0].Content());
  EXPECT_EQ(before, filter.Out(1).groups[0].Content());
  EXPECT_EQ(filter.Out(0).groups[0].Content(), filter.Out(3).groups[0].Content());
}

TEST(OutputPcm, ABadRecordIsNotWrittenBeyondItsRings) {
  Filter filter;
  ZE_KEST_PcmBuffer_s &pcm = filter.Out(0).Pcm(16, 4, {0, 10, 0});
  const Sources<int16_t> sources;
  const Bytes before = filter.Out(0).groups[1].Content();
  pcm.astPcmGroup[1].u32ChannelCount = UINT32_MAX;
  pcm.sztPcmReadOffset = 9;
  EXPECT_EQ(ZE_KEST_OK, sources.Write(filter, 4));
  EXPECT_EQ(before, filter.Out(0).groups[1].Content());
  pcm.sztPcmReadOffset = 3;
  EXPECT_EQ(ZE_KEST_OK, sources.Write(filter, kSamples));
  EXPECT_EQ(before.size(), filter.Out(0).groups[1].Content().size());
}
