// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/channel_move.h"
#include "utility/port/pcm_rings.h"
#include "utility/port/port_walk.h"
#include "utility/port/ring_position.h"

namespace {

// How channels are written, for contiguous or for strided sources; the same for the whole port.
struct PortWrite {
  kest::ChannelWay<kest::RingWriter> stWay;
  kest::RingPlan stPlan;
};

bool WritesDirectly(const ZE_KEST_Filter_s &stFilter) {
  return stFilter.sztMaxOutPcmProcessSize != ZE_KEST_NO_BOUND &&
         (stFilter.u8Option & ZE_KEST_OPTION_DIRECT_WRITE) != 0;
}

// Deliberate: a direct write ignores the end of the ring; the caller must keep it inside.
kest::RingPlan PlanDirect(uint32_t u32Position, uint32_t sztSamples, uint32_t u32Width, uint32_t u32Unit) {
  return {size_t{u32Position} * u32Width, {sztSamples * kest::UnitsPerSample(u32Width, u32Unit), 0}, {}};
}

PortWrite PlanWrite(const ZE_KEST_PcmBuffer_s &stPcm, const kest::ChannelWay<kest::RingWriter> &stWay,
                    uint32_t sztSamples, bool bDirect) {
  const uint32_t u32Width = kest::BytesPerSample(stPcm);
  const uint32_t u32Position =
      kest::WrapOnce(stPcm.sztPcmLevel + stPcm.sztPcmReadOffset, stPcm.sztPcmRingSamples);
  return {stWay, bDirect ? PlanDirect(u32Position, sztSamples, u32Width, stWay.u32Unit)
                         : kest::PlanPort(stPcm, u32Position, sztSamples, stWay.u32Unit)};
}

// The sources for the slots of a group.
template <typename Sample>
struct GroupSources {
  const ZE_KEST_PcmGroup_s &stGroup;
  Sample *const *apSrc;
  const uint16_t *au16Stride;

  [[nodiscard]] const uint8_t *Of(uint32_t u32Slot) const {
    if (!kest::CarriesChannel(stGroup, u32Slot)) return nullptr;
    return static_cast<const uint8_t *>(static_cast<const void *>(apSrc[u32Slot]));
  }

  // The number of slots, starting with one that has a source, whose samples are adjacent in the same frames,
  // so that they can be written together.
  [[nodiscard]] uint32_t AdjacentSlots(uint32_t u32First, uint32_t u32Width) const {
    const auto uAddress = reinterpret_cast<uintptr_t>(Of(u32First));
    const uint32_t u32Slots = au16Stride[u32First] == 1 ? 0 : kest::SlotCount(stGroup);
    uint32_t u32Slot = u32First + 1;
    while (u32Slot < u32Slots && au16Stride[u32Slot] == au16Stride[u32First] &&
           reinterpret_cast<uintptr_t>(Of(u32Slot)) == uAddress + size_t{u32Slot - u32First} * u32Width)
      ++u32Slot;
    return u32Slot - u32First;
  }
};

// apSrc, au16Stride: the entries of this group.
template <typename Sample>
void WriteGroup(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Group, const PortWrite &stContiguous,
                const PortWrite &stStrided, Sample *const *apSrc, const uint16_t *au16Stride) {
  if (stPcm.apu8PcmGroupBuf[u32Group] == nullptr) return;
  const GroupSources<Sample> stSources = {stPcm.astPcmGroup[u32Group], apSrc, au16Stride};
  const uint32_t u32Slots = kest::SlotCount(stSources.stGroup);
  uint32_t u32Channels = 1;
  for (uint32_t u32Slot = 0; u32Slot < u32Slots; u32Slot += u32Channels) {
    u32Channels = 1;
    if (stSources.Of(u32Slot) == nullptr) continue;
    u32Channels = stSources.AdjacentSlots(u32Slot, kest::BytesPerSample(stPcm));
    const uint16_t u16Stride = au16Stride[u32Slot];
    const PortWrite &stWrite = u16Stride == 1 ? stContiguous : stStrided;
    stWrite.stWay.pfnMove({kest::SlotRing(stPcm, u32Group, u32Slot), kest::RingPitch(stPcm),
                           stSources.Of(u32Slot), u16Stride, u32Channels},
                          stWrite.stPlan);
  }
}

template <typename Sample>
void WritePort(const ZE_KEST_Filter_s &stFilter, const ZE_KEST_PcmBuffer_s &stPcm, uint32_t sztSamples,
               Sample *const *apSrc, const uint16_t *au16Stride) {
  const bool bDirect = WritesDirectly(stFilter);
  const PortWrite stContiguous = PlanWrite(stPcm, kest::kWriteAsIs.Contiguous(), sztSamples, bDirect);
  const PortWrite stStrided =
      PlanWrite(stPcm, kest::kWriteAsIs.Strided(kest::BytesPerSample(stPcm)), sztSamples, bDirect);
  for (uint32_t u32Group = 0; u32Group < ZE_KEST_PCM_GROUPS; ++u32Group) {
    const uint32_t u32Entry = u32Group * ZE_KEST_PCM_GROUP_ENTRIES;
    WriteGroup(stPcm, u32Group, stContiguous, stStrided, apSrc + u32Entry, au16Stride + u32Entry);
  }
}

template <typename Sample>
bool HasSources(const char *pszFunction, Sample *const *apSrc, const uint16_t *au16Stride) {
  KEST_REQUIRE_OR_AS(pszFunction, apSrc != nullptr, false, "apSrc is NULL.\n");
  KEST_REQUIRE_OR_AS(pszFunction, au16Stride != nullptr, false, "au16Stride is NULL.\n");
  return true;
}

template <typename Sample>
uint32_t WriteOne(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter, uint32_t u32PortIdx,
                  uint32_t sztSamples, Sample *const *apSrc, const uint16_t *au16Stride) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  const ZE_KEST_Port_s *pstPort = kest::OutputSide(*pstFilter).ServedAt(u32PortIdx);
  if (pstPort == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  if (!HasSources(pszFunction, apSrc, au16Stride)) return ZE_KEST_INVALID_ARGUMENT;
  WritePort(*pstFilter, pstPort->stPcm, sztSamples, apSrc, au16Stride);
  return ZE_KEST_OK;
}

// Deliberate: as in writes to a single port, only slot 0 is written when it is not connected. If slot 0 is
// empty, the first port after it has to be connected, unlike in the other walks.
template <typename Sample>
uint32_t WriteAll(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter, uint32_t sztSamples,
                  Sample *const *apSrc, const uint16_t *au16Stride) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  if (!HasSources(pszFunction, apSrc, au16Stride)) return ZE_KEST_INVALID_ARGUMENT;
  const kest::PortSide stSide = kest::OutputSide(*pstFilter);
  for (uint32_t u32PortIdx = 0; u32PortIdx < stSide.Count(); ++u32PortIdx) {
    const ZE_KEST_Port_s *pstPort = stSide.ServedAt(u32PortIdx);
    if (pstPort != nullptr) WritePort(*pstFilter, pstPort->stPcm, sztSamples, apSrc, au16Stride);
  }
  return ZE_KEST_OK;
}

}  // namespace

uint32_t ze_kest_Utility_WriteOutputPort16BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter, uint32_t u32PortIdx,
                                                       uint32_t sztSamples, int16_t *const *apSrc,
                                                       const uint16_t *au16Stride) {
  return WriteOne(__func__, pstFilter, u32PortIdx, sztSamples, apSrc, au16Stride);
}

uint32_t ze_kest_Utility_WriteOutputPort32BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter, uint32_t u32PortIdx,
                                                       uint32_t sztSamples, int32_t *const *apSrc,
                                                       const uint16_t *au16Stride) {
  return WriteOne(__func__, pstFilter, u32PortIdx, sztSamples, apSrc, au16Stride);
}

uint32_t ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t sztSamples, int16_t *const *apSrc,
                                                          const uint16_t *au16Stride) {
  return WriteAll(__func__, pstFilter, sztSamples, apSrc, au16Stride);
}

uint32_t ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t sztSamples, int32_t *const *apSrc,
                                                          const uint16_t *au16Stride) {
  return WriteAll(__func__, pstFilter, sztSamples, apSrc, au16Stride);
}
