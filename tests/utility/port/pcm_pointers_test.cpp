// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace {

using kest::test::Filter;

struct Pointers {
  Pointers() { std::fill(std::begin(aps32), std::end(aps32), reinterpret_cast<int32_t *>(this)); }
  uint32_t Analyze(Filter &filter) {
    return ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(filter, 0, aps32, au16Stride, &u8Present);
  }
  int32_t *aps32[ZE_KEST_PCM_CHANNEL_ENTRIES];
  uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES] = {};
  uint8_t u8Present = 7;
};

}  // namespace

TEST(PcmPointers, PointAtTheReadPositionOfEveryChannel) {
  Filter filter;
  ZE_KEST_PcmBuffer_s &pcm = filter.In(0).Pcm(32, 16, {2, 10, 3});
  pcm.astPcmGroup[1].as32ChMap[4] = -1;
  pcm.sztPcmReadOffset = 12;
  pcm.sztPcmReadSize = 7;
  const kest::test::ReportCapture capture;
  Pointers pointers;
  EXPECT_EQ(ZE_KEST_OK, pointers.Analyze(filter));
  EXPECT_TRUE(capture.Reports().empty());
  EXPECT_EQ(1, pointers.u8Present);
  EXPECT_THAT(pointers.au16Stride, testing::Each(1));
  for (uint32_t entry = 0; entry < ZE_KEST_PCM_CHANNEL_ENTRIES; ++entry) {
    const uint32_t group = entry / 12;
    const bool bChannel = entry % 12 < pcm.astPcmGroup[group].u32ChannelCount && entry != 12 + 4;
    const void *pv = bChannel ? pcm.apu8PcmGroupBuf[group] + size_t{entry % 12 * 16 + 3} * 4 : nullptr;
    EXPECT_EQ(pv, pointers.aps32[entry]) << entry;
  }
}

TEST(PcmPointers, GroupsThatContradictTheFormatAreReportedOnly) {
  Filter filter;
  ZE_KEST_PcmBuffer_s &pcm = filter.In(0).Pcm(32, 16, {2, 10, 10});
  pcm.astPcmGroup[0].ePcmGroupType = 1;
  pcm.astPcmGroup[1].ePcmGroupType = -1;
  pcm.astPcmGroup[2].u32ChannelCount = 99;
  pcm.sztPcmRingSamples = 0;
  pcm.sztPcmReadOffset = 3;  // no ring contains it
  const kest::test::ReportCapture capture;
  Pointers pointers;
  EXPECT_EQ(ZE_KEST_OK, pointers.Analyze(filter));
  for (uint32_t entry = 0; entry < ZE_KEST_PCM_CHANNEL_ENTRIES; ++entry) {
    const void *pv = entry >= 24 && entry < 34 ? pcm.apu8PcmGroupBuf[2] + 3 * 4 : nullptr;
    EXPECT_EQ(pv, pointers.aps32[entry]) << entry;
  }
  pcm.sztPcmReadOffset = 1;
  pcm.apu8PcmGroupBuf[2] = nullptr;
  EXPECT_EQ(ZE_KEST_OK, pointers.Analyze(filter));
  EXPECT_THAT(pointers.aps32, testing::Each(nullptr)) << "without storage";
  pcm.u32PcmGroupNum = 0;
  pointers.u8Present = 7;
  EXPECT_EQ(ZE_KEST_OK, pointers.Analyze(filter));
  EXPECT_EQ(7, pointers.u8Present);
  const std::string text = "[pipe:filter]PcmGroup information error:u32TotalChannels=22,u32ChannelCount=";
  EXPECT_THAT(capture.Texts("<ERR>"), testing::ElementsAre(text + "99\n", text + "99\n", text + "0\n"));
  EXPECT_EQ("ze_kest_Utility_AnalyzeInputPort32BitPcmGroup", capture.Reports()[0].function);
}
