// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/channel_move.h"
#include "utility/port/pcm_rings.h"
#include "utility/port/port_walk.h"
#include "utility/port/ring_position.h"

namespace {

constexpr uint32_t kLastGroup = ZE_KEST_PCM_GROUPS - 1;

// One past the last global channel of each group.
constexpr uint32_t kGroupEndChIdx[ZE_KEST_PCM_GROUPS] = {2, 12, 22};

// How much of the last group a reader supports.
enum class LastGroup { kWholeOf32Bits, kOneChannel };

// The arguments of a read.
struct Request {
  uint32_t u32PortIdx;
  void *pvDst;
  uint32_t sztSamples;
  uint32_t u32FirstCh;
  uint32_t u32LastCh;
  uint32_t u32DstChNum;
};

// Consecutive slots of one group, read together into consecutive slots of the destination frames.
struct ChannelRun {
  uint32_t u32Group;
  uint32_t u32Slot;
  uint32_t u32Count;
};

// The plan for reading the channels of one port into one destination.
struct PortRead {
  const ZE_KEST_PcmBuffer_s &stPcm;
  kest::ChannelWay<kest::RingReader> stWay;
  kest::RingPlan stPlan;
  uint32_t u32Stride;
  uint32_t u32LinearBytes;
  bool bWholeLastGroup;
};

// The group of a global channel; ZE_KEST_PCM_GROUPS for a channel beyond the last group.
uint32_t GroupOf(uint32_t u32Channel) {
  uint32_t u32Group = 0;
  while (u32Group < ZE_KEST_PCM_GROUPS && u32Channel >= kGroupEndChIdx[u32Group])
    ++u32Group;
  return u32Group;
}

const ZE_KEST_Port_s *PortOf(const ZE_KEST_Filter_s &stFilter, const Request &stRequest) {
  if (stRequest.u32LastCh < stRequest.u32FirstCh) return nullptr;
  if (stRequest.u32LastCh - stRequest.u32FirstCh >= stRequest.u32DstChNum) return nullptr;
  return kest::InputSide(stFilter).ServedAt(stRequest.u32PortIdx);
}

PortRead PlanRead(const ZE_KEST_PcmBuffer_s &stPcm, const Request &stRequest,
                  const kest::MoverTable<kest::RingReader> &stTable, bool bWholeLastGroup) {
  const uint32_t u32Width = kest::BytesPerSample(stPcm);
  const auto stWay = stTable.For(u32Width, stRequest.u32DstChNum);
  const uint32_t u32Position =
      kest::WrapOnce(stPcm.sztPcmReadSize + stPcm.sztPcmReadOffset, stPcm.sztPcmRingSamples);
  return {stPcm,
          stWay,
          kest::PlanPort(stPcm, u32Position, stRequest.sztSamples, stWay.u32Unit),
          stRequest.u32DstChNum,
          stTable.LinearBytes(u32Width),
          bWholeLastGroup};
}

// The number of slots from u32Slot on, up to u32End, that all carry a channel or all carry none.
uint32_t AlikeSlots(const ZE_KEST_PcmGroup_s &stGroup, uint32_t u32Slot, uint32_t u32End) {
  const bool bCarries = kest::CarriesChannel(stGroup, u32Slot);
  const uint32_t u32First = u32Slot;
  while (u32Slot < u32End && kest::CarriesChannel(stGroup, u32Slot) == bCarries)
    ++u32Slot;
  return u32Slot - u32First;
}

void ReadRun(const PortRead &stRead, const ChannelRun &stRun, uint8_t *pu8Dst) {
  const ZE_KEST_PcmBuffer_s &stPcm = stRead.stPcm;
  if (stPcm.apu8PcmGroupBuf[stRun.u32Group] == nullptr) return;
  const ZE_KEST_PcmGroup_s &stGroup = stPcm.astPcmGroup[stRun.u32Group];
  const uint32_t u32End = stRun.u32Slot + stRun.u32Count;
  for (uint32_t u32Slot = stRun.u32Slot; u32Slot < u32End;) {
    const uint32_t u32Channels = AlikeSlots(stGroup, u32Slot, u32End);
    if (kest::CarriesChannel(stGroup, u32Slot)) {
      stRead.stWay.pfnMove({kest::SlotRing(stPcm, stRun.u32Group, u32Slot), kest::RingPitch(stPcm), pu8Dst,
                            stRead.u32Stride, u32Channels},
                           stRead.stPlan);
    }
    pu8Dst += size_t{u32Channels} * stRead.u32LinearBytes;
    u32Slot += u32Channels;
  }
}

// Deliberate: the first channel read from group 0 uses slot 0, even if it is channel 1. Where the last group
// is not read whole, a run in it has one channel.
ChannelRun RunFrom(uint32_t u32Channel, uint32_t u32Group, const Request &stRequest, bool bWholeLastGroup) {
  const uint32_t u32Slot = u32Group == 0 ? 0 : u32Channel - sztPcmGroupBaseChIdx[u32Group];
  if (u32Group == kLastGroup && !bWholeLastGroup) return {u32Group, u32Slot, 1};
  const uint32_t u32LastInGroup = kGroupEndChIdx[u32Group] - 1;
  return {u32Group, u32Slot, std::min(u32LastInGroup, stRequest.u32LastCh) - u32Channel + 1};
}

uint32_t RefuseChannel(const char *pszFunction, uint32_t u32Channel, uint32_t u32Group) {
  KEST_ERR_AS(pszFunction, "sztCh(%zu) exceeds max. ePcmGroupType=%u\n", size_t{u32Channel}, u32Group);
  return ZE_KEST_FAILED;
}

uint32_t ReadChannels(const char *pszFunction, const PortRead &stRead, const Request &stRequest) {
  auto *pu8Dst = static_cast<uint8_t *>(stRequest.pvDst);
  uint32_t u32Group = 0;
  for (uint32_t u32Channel = stRequest.u32FirstCh; u32Channel <= stRequest.u32LastCh;) {
    // Deliberate: where the last group is not read whole, one channel of it is read, and any further channel
    // is refused.
    if (u32Group == kLastGroup && !stRead.bWholeLastGroup) {
      return RefuseChannel(pszFunction, u32Channel, u32Group);
    }
    u32Group = GroupOf(u32Channel);
    if (u32Group > kLastGroup) return RefuseChannel(pszFunction, u32Channel, u32Group);
    const ChannelRun stRun = RunFrom(u32Channel, u32Group, stRequest, stRead.bWholeLastGroup);
    ReadRun(stRead, stRun, pu8Dst);
    pu8Dst += size_t{stRun.u32Count} * stRead.u32LinearBytes;
    u32Channel += stRun.u32Count;
  }
  return ZE_KEST_OK;
}

// The checks that all readers make after that of the filter, and the read itself.
uint32_t ReadPort(const char *pszFunction, const ZE_KEST_Filter_s &stFilter, const Request &stRequest,
                  const kest::MoverTable<kest::RingReader> &stTable, LastGroup eLastGroup) {
  const ZE_KEST_Port_s *pstPort = PortOf(stFilter, stRequest);
  if (pstPort == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  KEST_REQUIRE_AS(pszFunction, stRequest.pvDst != nullptr, "pvDst is NULL.\n");
  const bool bWholeLastGroup =
      eLastGroup == LastGroup::kWholeOf32Bits && pstPort->stPcm.stPcmInfo.u32BitWidth == 32;
  return ReadChannels(pszFunction, PlanRead(pstPort->stPcm, stRequest, stTable, bWholeLastGroup), stRequest);
}

}  // namespace

uint32_t ze_kest_Utility_ReadInputPortPcmBuffer(const ZE_KEST_Filter_s *pstFilter, uint32_t u32PortIdx,
                                                void *pvDst, uint32_t sztSamples, uint32_t u32FirstCh,
                                                uint32_t u32LastCh, uint32_t u32DstChNum) {
  KEST_REQUIRE_AS("_ZE_KEST_UTILITY_ReadInputCheckSanity", pstFilter != nullptr, "pstFilter is NULL.\n");
  return ReadPort(__func__, *pstFilter, {u32PortIdx, pvDst, sztSamples, u32FirstCh, u32LastCh, u32DstChNum},
                  kest::kReadAsIs, LastGroup::kWholeOf32Bits);
}

uint32_t ze_kest_Utility_ReadInputPortPcmBuffer_To16Bit(const ZE_KEST_Filter_s *pstFilter,
                                                        uint32_t u32PortIdx, void *pvDst, uint32_t sztSamples,
                                                        uint32_t u32FirstCh, uint32_t u32LastCh,
                                                        uint32_t u32DstChNum) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  return ReadPort(__func__, *pstFilter, {u32PortIdx, pvDst, sztSamples, u32FirstCh, u32LastCh, u32DstChNum},
                  kest::kReadTo16, LastGroup::kOneChannel);
}

uint32_t ze_kest_Utility_ReadInputPortPcmBuffer_To24Le(const ZE_KEST_Filter_s *pstFilter, uint32_t u32PortIdx,
                                                       void *pvDst, uint32_t sztSamples, uint32_t u32FirstCh,
                                                       uint32_t u32LastCh, uint32_t u32DstChNum) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  return ReadPort(__func__, *pstFilter, {u32PortIdx, pvDst, sztSamples, u32FirstCh, u32LastCh, u32DstChNum},
                  kest::kReadTo24Le, LastGroup::kOneChannel);
}
