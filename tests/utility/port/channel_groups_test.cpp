// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace {

using kest::test::Filter;

// The rings that a side's ports need not own.
uint8_t g_u8Storage;

}  // namespace

TEST(ChannelGroups, TheTablesNumberTheChannels) {
  EXPECT_THAT(sztPcmGroupBaseChIdx, testing::ElementsAre(0, 2, 12));
  EXPECT_THAT(sztPcmGroupChNumber, testing::ElementsAre(2, 10, 10));
}

TEST(ChannelGroups, TheFormatGoesToTheFirstOutputAndConnectedOnes) {
  Filter filter;
  for (const uint32_t slot : {1u, 2u, 3u})
    filter.Out(slot).st.bConnected = slot == 3 ? 1 : 0;
  const ZE_KEST_PcmInfo_s stInfo = {6, 44100, 24, {7, 8}};
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_UpdatePcmInfoToAllOutputPort(filter, &stInfo));
  EXPECT_EQ(0, memcmp(&stInfo, &filter.Out(1).st.stPcm.stPcmInfo, sizeof(stInfo)));
  EXPECT_EQ(0u, filter.Out(2).st.stPcm.stPcmInfo.u32SampleRate);
  EXPECT_EQ(44100u, filter.Out(3).st.stPcm.stPcmInfo.u32SampleRate);
}

TEST(ChannelGroups, AGroupWithoutStorageIsMarkedAndNotCounted) {
  Filter filter;
  ZE_KEST_PcmBuffer_s &pcm = filter.Out(0).st.stPcm;
  pcm.apu8PcmGroupBuf[0] = pcm.apu8PcmGroupBuf[2] = &g_u8Storage;
  pcm.stPcmInfo.u32TotalChannels = 99;
  filter.Out(0).st.bConnected = filter.Out(1).st.bConnected = 0;
  const ZE_KEST_PcmGroup_s astGroups[] = {{0, 2, {1, -1}}, {1, 10, {3}}, {2, 4, {5}}};
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_UpdatePcmGroupToAllOutputPort(filter, 9, astGroups));
  EXPECT_EQ(3u, pcm.u32PcmGroupNum);
  EXPECT_EQ(6u, pcm.stPcmInfo.u32TotalChannels);
  EXPECT_EQ(-1, pcm.astPcmGroup[1].ePcmGroupType);
  pcm.astPcmGroup[1].ePcmGroupType = 1;
  EXPECT_EQ(0, memcmp(astGroups, pcm.astPcmGroup, sizeof(astGroups)));
  EXPECT_EQ(0u, filter.Out(1).st.stPcm.u32PcmGroupNum);
}

TEST(ChannelGroups, ASideIsCapableWhenAConnectedPortCarriesTheGroupOrNoneIsConnected) {
  for (const uint32_t group : {0u, 2u}) {
    Filter filter;
    const auto expect = [&](uint32_t u32Both, uint32_t u32Out, const char *pszWhy) {
      EXPECT_EQ(u32Both, ze_kest_Utility_CheckPcmGroupCapability(filter, group)) << group << pszWhy;
      EXPECT_EQ(u32Out, ze_kest_Utility_CheckOutPortPcmGroupCapability(filter, group)) << group << pszWhy;
    };
    expect(1, 1, "no ports");
    filter.In(0).st.bConnected = 0;
    expect(1, 1, "no connected port");
    filter.In(0).st.bConnected = 1;
    expect(0, 1, "a connected input without the group");
    filter.In(2).st.stPcm.apu8PcmGroupBuf[group] = &g_u8Storage;
    filter.Out(0).st.stPcm.apu8PcmGroupBuf[1] = &g_u8Storage;
    expect(0, 0, "a connected output with another group");
    filter.Out(5).st.stPcm.apu8PcmGroupBuf[group] = &g_u8Storage;
    filter.Out(6);
    expect(1, 1, "another one with the group");
    filter.Out(5).st.bConnected = 0;
    expect(0, 0, "the same, not connected");
    EXPECT_EQ(8u, ze_kest_Utility_CheckPcmGroupCapability(filter, 3));
    EXPECT_EQ(8u, ze_kest_Utility_CheckOutPortPcmGroupCapability(filter, 3));
  }
}
