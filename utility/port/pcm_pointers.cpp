// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/pcm_rings.h"
#include "utility/port/port_walk.h"
#include "utility/port/ring_position.h"

namespace {

template <typename Sample>
void Clear(Sample **apCh, uint16_t *au16Stride) {
  for (uint32_t u32Entry = 0; u32Entry < ZE_KEST_PCM_CHANNEL_ENTRIES; ++u32Entry) {
    apCh[u32Entry] = nullptr;
    au16Stride[u32Entry] = 1;
  }
}

// A group without storage yields no pointers. The position is not checked, because nothing is accessed
// through the pointers here.
template <typename Sample>
void PointInto(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Group, uint32_t u32Position, Sample **apCh) {
  if (stPcm.apu8PcmGroupBuf[u32Group] == nullptr) return;
  const ZE_KEST_PcmGroup_s &stGroup = stPcm.astPcmGroup[u32Group];
  const size_t sztPosition = size_t{u32Position} * kest::BytesPerSample(stPcm);
  for (uint32_t u32Slot = 0; u32Slot < kest::SlotCount(stGroup); ++u32Slot) {
    if (!kest::CarriesChannel(stGroup, u32Slot)) continue;
    void *pvSample = kest::SlotRing(stPcm, u32Group, u32Slot) + sztPosition;
    apCh[u32Slot] = static_cast<Sample *>(pvSample);
  }
}

// Returns the total number of channels of the groups.
template <typename Sample>
uint32_t PointIntoGroups(const ZE_KEST_PcmBuffer_s &stPcm, Sample **apCh) {
  const uint32_t u32Position =
      kest::WrapOnce(stPcm.sztPcmReadSize + stPcm.sztPcmReadOffset, stPcm.sztPcmRingSamples);
  uint32_t u32Channels = 0;
  for (uint32_t u32Group = 0; u32Group < ZE_KEST_PCM_GROUPS; ++u32Group) {
    const ZE_KEST_PcmGroup_s &stGroup = stPcm.astPcmGroup[u32Group];
    if (stGroup.ePcmGroupType != static_cast<int32_t>(u32Group)) continue;
    PointInto(stPcm, u32Group, u32Position, apCh + u32Group * ZE_KEST_PCM_GROUP_ENTRIES);
    u32Channels += stGroup.u32ChannelCount;
  }
  return u32Channels;
}

template <typename Sample>
bool HasOutputs(const char *pszFunction, Sample *const *apCh, const uint16_t *au16Stride,
                const uint8_t *pbGroupPresent) {
  KEST_REQUIRE_OR_AS(pszFunction, apCh != nullptr, false, "apCh is NULL.\n");
  KEST_REQUIRE_OR_AS(pszFunction, au16Stride != nullptr, false, "au16Stride is NULL.\n");
  KEST_REQUIRE_OR_AS(pszFunction, pbGroupPresent != nullptr, false, "pbGroupPresent is NULL.\n");
  return true;
}

template <typename Sample>
uint32_t Analyze(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter, uint32_t u32PortIdx,
                 Sample **apCh, uint16_t *au16Stride, uint8_t *pbGroupPresent) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  const ZE_KEST_Port_s *pstPort = kest::InputSide(*pstFilter).ServedAt(u32PortIdx);
  if (pstPort == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  if (!HasOutputs(pszFunction, apCh, au16Stride, pbGroupPresent)) return ZE_KEST_INVALID_ARGUMENT;

  const ZE_KEST_PcmBuffer_s &stPcm = pstPort->stPcm;
  Clear(apCh, au16Stride);
  uint32_t u32Channels = 0;
  if (stPcm.u32PcmGroupNum != 0) {
    *pbGroupPresent = 1;
    u32Channels = PointIntoGroups(stPcm, apCh);
  }
  if (u32Channels != stPcm.stPcmInfo.u32TotalChannels) {
    KEST_ERR_AS(pszFunction, "[%s:%s]PcmGroup information error:u32TotalChannels=%u,u32ChannelCount=%u\n",
                kest::PipelineName(*pstFilter), pstFilter->szName, stPcm.stPcmInfo.u32TotalChannels,
                u32Channels);
  }
  return ZE_KEST_OK;
}

}  // namespace

uint32_t ze_kest_Utility_AnalyzeInputPort16BitPcmGroup(const ZE_KEST_Filter_s *pstFilter, uint32_t u32PortIdx,
                                                       int16_t **apCh, uint16_t *au16Stride,
                                                       uint8_t *pbGroupPresent) {
  return Analyze(__func__, pstFilter, u32PortIdx, apCh, au16Stride, pbGroupPresent);
}

uint32_t ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(const ZE_KEST_Filter_s *pstFilter, uint32_t u32PortIdx,
                                                       int32_t **apCh, uint16_t *au16Stride,
                                                       uint8_t *pbGroupPresent) {
  return Analyze(__func__, pstFilter, u32PortIdx, apCh, au16Stride, pbGroupPresent);
}
