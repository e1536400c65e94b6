// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/port_walk.h"

const uint32_t sztPcmGroupBaseChIdx[ZE_KEST_PCM_GROUPS] = {0, 2, 12};
const uint32_t sztPcmGroupChNumber[ZE_KEST_PCM_GROUPS] = {2, 10, 10};

namespace {

void SetGroups(ZE_KEST_PcmBuffer_s &stPcm, const ZE_KEST_PcmGroup_s *pastPcmGroup) {
  stPcm.u32PcmGroupNum = ZE_KEST_PCM_GROUPS;
  stPcm.stPcmInfo.u32TotalChannels = 0;
  for (uint32_t u32Group = 0; u32Group < ZE_KEST_PCM_GROUPS; ++u32Group) {
    ZE_KEST_PcmGroup_s &stGroup = stPcm.astPcmGroup[u32Group];
    stGroup = pastPcmGroup[u32Group];
    if (stPcm.apu8PcmGroupBuf[u32Group] != nullptr) {
      stPcm.stPcmInfo.u32TotalChannels += stGroup.u32ChannelCount;
    } else {
      stGroup.ePcmGroupType = -1;
    }
  }
}

// Deliberate: a side without connected ports counts as capable, and port 0 is not an exception here.
bool SideCarries(const kest::PortSide &stSide, uint32_t ePcmGroupType) {
  bool bConnected = false;
  bool bCarries = false;
  stSide.ForEachConnected([&](const ZE_KEST_Port_s &stPort) {
    bConnected = true;
    bCarries = bCarries || stPort.stPcm.apu8PcmGroupBuf[ePcmGroupType] != nullptr;
  });
  return bCarries || !bConnected;
}

}  // namespace

uint32_t ze_kest_Utility_UpdatePcmInfoToAllOutputPort(ZE_KEST_Filter_s *pstFilter,
                                                      const ZE_KEST_PcmInfo_s *pstPcmInfo) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE(pstPcmInfo != nullptr, "pstPcmInfo is NULL.\n");
  kest::OutputSide(*pstFilter).ForEachServed([&](ZE_KEST_Port_s &stPort) {
    stPort.stPcm.stPcmInfo = *pstPcmInfo;
  });
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_UpdatePcmGroupToAllOutputPort(ZE_KEST_Filter_s *pstFilter, uint32_t /*u32Unused*/,
                                                       const ZE_KEST_PcmGroup_s *pastPcmGroup) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE(pastPcmGroup != nullptr, "pastPcmGroup is NULL.\n");
  kest::OutputSide(*pstFilter).ForEachServed([&](ZE_KEST_Port_s &stPort) {
    SetGroups(stPort.stPcm, pastPcmGroup);
  });
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_CheckPcmGroupCapability(const ZE_KEST_Filter_s *pstFilter, uint32_t ePcmGroupType) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  if (ePcmGroupType >= ZE_KEST_PCM_GROUPS) return ZE_KEST_INVALID_ARGUMENT;
  const bool bCapable = SideCarries(kest::InputSide(*pstFilter), ePcmGroupType) &&
                        SideCarries(kest::OutputSide(*pstFilter), ePcmGroupType);
  return bCapable ? 1 : 0;
}

uint32_t ze_kest_Utility_CheckOutPortPcmGroupCapability(const ZE_KEST_Filter_s *pstFilter,
                                                        uint32_t ePcmGroupType) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  if (ePcmGroupType >= ZE_KEST_PCM_GROUPS) return ZE_KEST_INVALID_ARGUMENT;
  return SideCarries(kest::OutputSide(*pstFilter), ePcmGroupType) ? 1 : 0;
}
