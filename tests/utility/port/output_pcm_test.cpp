// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace kest::test {
namespace {

constexpr uint32_t kSamples = 5;
constexpr uint32_t kRing = 8;

// A source of noise for every entry but one, with strides of all kinds.
template <typename Sample>
struct Sources {
  Sources() {
    const uint16_t au16Strides[] = {0, 1, 2, 3, 11, 300};
    for (uint32_t entry = 0; entry < ZE_KEST_PCM_CHANNEL_ENTRIES; ++entry) {
      noise[entry] = Noise(kSamples * sizeof(Sample) * 300, entry + 50);
      apSrc[entry] = static_cast<Sample *>(static_cast<void *>(noise[entry].data()));
      au16Stride[entry] = au16Strides[entry % 6];
    }
    apSrc[14] = nullptr;
    // Slots whose samples lie one beside the other in frames, and at last two that do but for their order.
    for (uint32_t entry = 15; entry < 21; ++entry) {
      apSrc[entry] = apSrc[15] + (entry - 15);
      au16Stride[entry] = 11;
    }
    std::swap(apSrc[19], apSrc[20]);
  }
  uint32_t Write(ZE_KEST_Filter_s *pstFilter, uint32_t samples) const {
    if constexpr (sizeof(Sample) == 2) {
      return ze_kest_Utility_WriteOutputPort16BitPcmBuffer(pstFilter, 0, samples, apSrc, au16Stride);
    } else {
      return ze_kest_Utility_WriteOutputPort32BitPcmBuffer(pstFilter, 0, samples, apSrc, au16Stride);
    }
  }
  Bytes noise[ZE_KEST_PCM_CHANNEL_ENTRIES];
  Sample *apSrc[ZE_KEST_PCM_CHANNEL_ENTRIES];
  uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES];
};

// Writes, and compares with the storage that a write channel by channel leaves; straight: without
// wrap-around.
template <typename Sample>
void ExpectLikeModel(Filter &filter, bool bStraight) {
  const Sources<Sample> sources;
  const Port &port = filter.Out(0);
  const ZE_KEST_PcmBuffer_s &pcm = port.st.stPcm;
  const uint32_t width = pcm.stPcmInfo.u32BitWidth / 8;
  const uint32_t position = (pcm.sztPcmLevel + pcm.sztPcmReadOffset) % kRing;
  std::array<Guarded, ZE_KEST_PCM_GROUPS> expected = port.groups;
  for (uint32_t entry = 0; entry < ZE_KEST_PCM_CHANNEL_ENTRIES; ++entry) {
    const uint32_t slot = entry % 12;
    const ZE_KEST_PcmGroup_s &group = pcm.astPcmGroup[entry / 12];
    if (slot >= std::min(group.u32ChannelCount, 10u) || group.as32ChMap[slot] == -1) continue;
    if (sources.apSrc[entry] == nullptr || pcm.apu8PcmGroupBuf[entry / 12] == nullptr) continue;
    uint8_t *pu8Ring = expected[entry / 12].Data() + size_t{slot} * kRing * width;
    ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(
        pu8Ring, pu8Ring + size_t{position} * width, (bStraight ? 2 : 1) * kRing * width,
        static_cast<const uint8_t *>(static_cast<const void *>(sources.apSrc[entry])), kSamples * width,
        sources.au16Stride[entry], width);
  }
  ASSERT_EQ(ZE_KEST_OK, sources.Write(filter, kSamples));
  for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g)
    ASSERT_EQ(expected[g].Content(), port.groups[g].Content()) << width << ' ' << g << ' ' << position;
  EXPECT_EQ(3u, pcm.sztPcmWriteSize) << "not part of the position, and a write commits nothing";
}

void ExpectMode(uint32_t bits, uint32_t bound, uint8_t u8Option, uint32_t level) {
  Filter filter;
  ZE_KEST_PcmBuffer_s &pcm = filter.Out(0).Pcm(bits, kRing, {2, 10, 10});
  // The last slot of a group gets nothing: the one before it may run on into its ring.
  for (ZE_KEST_PcmGroup_s &group : pcm.astPcmGroup)
    group.as32ChMap[group.u32ChannelCount - 1] = -1;
  pcm.astPcmGroup[1].u32ChannelCount = 99;
  pcm.astPcmGroup[2].u32ChannelCount = 7;
  pcm.apu8PcmGroupBuf[bits / 8 % 3] = nullptr;
  pcm.sztPcmReadOffset = 7;
  pcm.sztPcmLevel = level;
  pcm.sztPcmWriteSize = 3;
  filter.st->sztMaxOutPcmProcessSize = bound;
  filter.st->u8Option = u8Option;
  const bool bStraight = bound == 64 && u8Option == 0x04;
  bits <= 16 ? ExpectLikeModel<int16_t>(filter, bStraight) : ExpectLikeModel<int32_t>(filter, bStraight);
}

}  // namespace

TEST(OutputPcm, OnlyTheOptionWithABoundWritesStraightOn) {
  for (const uint32_t bits : {8u, 16u, 24u, 32u}) {
    for (const uint32_t bound : {ZE_KEST_NO_BOUND, 64u}) {
      for (const unsigned option : {0x00u, 0xFBu, 0x04u}) {
        for (const uint32_t level : {1u, 7u})
          ASSERT_NO_FATAL_FAILURE(ExpectMode(bits, bound, static_cast<uint8_t>(option), level)) << option;
      }
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

}  // namespace kest::test
