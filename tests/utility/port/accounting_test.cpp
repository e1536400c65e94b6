// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace {

using kest::test::Filter;

struct Account {
  const char *pszName;
  uint32_t (*pfnUpdateAll)(ZE_KEST_Filter_s *, uint32_t);
  uint32_t &(*pfnSize)(ZE_KEST_Port_s &);
  bool bInput, bPcm;
  uint32_t u32Cap;
};

// clang-format off
#define KEST_ACCOUNT(name, field) \
  #name, ze_kest_Utility_UpdateAll##name, [](ZE_KEST_Port_s &stPort) -> uint32_t & { return stPort.field; }
const Account kAccounts[] = {
    {KEST_ACCOUNT(InputPortPcmReadSize, stPcm.sztPcmReadSize), true, true, 1024},
    {KEST_ACCOUNT(OutputPortPcmWriteSize, stPcm.sztPcmWriteSize), false, true, 1024},
    {KEST_ACCOUNT(InputPortMetadataReadSize, stMeta.sztReadSize), true, false, UINT32_MAX},
    {KEST_ACCOUNT(OutputPortMetadataWriteSize, stMeta.sztWriteSize), false, false, 1040},
    {KEST_ACCOUNT(InputPortRawReadSize, stRaw.sztReadSize), true, false, UINT32_MAX},
    {KEST_ACCOUNT(OutputPortRawWriteSize, stRaw.sztWriteSize), false, false, UINT32_MAX},
};
// clang-format on

}  // namespace

TEST(Accounting, TheFirstPortAndConnectedOnesAreUpdatedSomeUpToTheirCapacity) {
  for (const Account &account : kAccounts) {
    SCOPED_TRACE(account.pszName);
    Filter filter;
    EXPECT_EQ(account.bPcm ? ZE_KEST_NO : ZE_KEST_OK, account.pfnUpdateAll(filter, 0)) << "no slots";
    std::vector<uint32_t *> sizes;
    for (const uint32_t slot : {1u, 2u, 4u}) {
      ZE_KEST_Port_s &stPort = account.bInput ? filter.In(slot).st : filter.Out(slot).st;
      stPort.stPcm.sztPcmRingSamples = 1024;
      stPort.stMeta.sztSize = 1040;
      stPort.stRaw.sztSize = 1060;
      stPort.bConnected = slot == 4 ? 1 : 0;
      sizes.push_back(&account.pfnSize(stPort));
      *sizes.back() = 900;
    }
    EXPECT_EQ(account.bPcm ? ZE_KEST_NO : ZE_KEST_OK, account.pfnUpdateAll(filter, 0));
    EXPECT_THAT(sizes, testing::Each(testing::Pointee(900)));
    EXPECT_EQ(ZE_KEST_OK, account.pfnUpdateAll(filter, 200));
    const uint32_t u32Sum = std::min(1100u, account.u32Cap);
    EXPECT_EQ(u32Sum, *sizes[0]);
    EXPECT_EQ(900u, *sizes[1]) << "not connected";
    EXPECT_EQ(u32Sum, *sizes[2]);
    EXPECT_EQ(ZE_KEST_OK, account.pfnUpdateAll(filter, UINT32_MAX));
    EXPECT_EQ(std::min(1099u, account.u32Cap), *sizes[0]) << "beyond 32 bits";
  }
}

TEST(Accounting, OnePortIsUpdatedUnconnectedAndAMissingOneIsNoError) {
  Filter filter;
  ZE_KEST_Port_s &stIn = filter.In(1).st;
  ZE_KEST_Port_s &stOut = filter.Out(1).st;
  stIn.bConnected = stOut.bConnected = 0;
  stIn.stPcm.sztPcmRingSamples = stOut.stPcm.sztPcmRingSamples = 150;
  stIn.stPcm.sztPcmTotalRead = stIn.stMeta.sztTotalRead = stIn.stRaw.sztTotalRead = UINT32_MAX;
  for (const uint32_t port : {0u, 1u, 2u, 8u, UINT32_MAX}) {
    for (const uint32_t count : {200u, 0u, 100u}) {
      const uint32_t u32Pcm = count == 0 ? ZE_KEST_NO : ZE_KEST_OK;
      EXPECT_EQ(u32Pcm, ze_kest_Utility_UpdateSpecificInputPortPcmReadSize(filter, count, port));
      EXPECT_EQ(u32Pcm, ze_kest_Utility_UpdateSpecificOutputPortPcmWriteSize(filter, count, port));
      EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_UpdateSpecificInputPortMetadataReadSize(filter, count, port));
      EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_UpdateSpecificInputPortRawReadSize(filter, count, port));
    }
  }
  const auto values = {stIn.stPcm.sztPcmReadSize, stOut.stPcm.sztPcmWriteSize, stIn.stMeta.sztReadSize,
                       stIn.stRaw.sztReadSize};
  EXPECT_THAT(values, testing::ElementsAre(150, 150, 300, 300));
  const auto totals = {stIn.stPcm.sztPcmTotalRead, stIn.stMeta.sztTotalRead, stIn.stRaw.sztTotalRead};
  EXPECT_THAT(totals, testing::Each(299)) << "uncapped, wrapping";
  const auto updates = {stIn.stPcm.u64PcmReadCount, stIn.stMeta.au64Count[0], stIn.stRaw.au64Count[0]};
  EXPECT_THAT(updates, testing::Each(2)) << "those with data";
}
