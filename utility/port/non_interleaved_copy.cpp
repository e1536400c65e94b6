// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/pcm_rings.h"
#include "utility/port/ring_to_ring.h"

namespace {

// One side of a copy: a port's rings, which all have the same size, and the position in them.
struct Side {
  const ZE_KEST_PcmBuffer_s &stPcm;
  uint32_t u32Position;
  uint32_t u32Width;  // bytes of a sample

  // A port that does not specify a width gets the default passed in: 16 bits for the source, the source's
  // width for the destination.
  Side(const ZE_KEST_PcmBuffer_s &stBuffer, uint32_t u32Advance, uint32_t u32DefaultWidth)
      : stPcm(stBuffer),
        u32Position(kest::WrapOnce(stBuffer.sztPcmReadOffset + u32Advance, stBuffer.sztPcmRingSamples)),
        u32Width(stBuffer.stPcmInfo.u32BitWidth == 0 ? u32DefaultWidth : kest::BytesPerSample(stBuffer)) {}

  template <typename Byte>
  [[nodiscard]] kest::RingPlace<Byte> Slot(uint32_t u32Group, uint32_t u32Slot) const {
    return {kest::SlotRing(stPcm, u32Group, u32Slot, u32Width), stPcm.sztPcmRingSamples, u32Position,
            u32Width};
  }
};

// Deliberate: copies the slots in the source's channel map and ignores the destination's.
void CopySlots(const Side &stDst, const Side &stSrc, uint32_t sztSamples, uint32_t u32Group) {
  const ZE_KEST_PcmGroup_s &stGroup = stSrc.stPcm.astPcmGroup[u32Group];
  const uint32_t u32Slots = std::min(sztPcmGroupChNumber[u32Group], stGroup.u32ChannelCount);
  for (uint32_t u32Slot = 0; u32Slot < u32Slots; ++u32Slot) {
    if (!kest::CarriesChannel(stGroup, u32Slot)) continue;
    kest::CopyRingToRing(stDst.Slot<uint8_t>(u32Group, u32Slot), stSrc.Slot<const uint8_t>(u32Group, u32Slot),
                         sztSamples);
  }
}

bool HasStorage(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Group) {
  return stPcm.apu8PcmGroupBuf[u32Group] != nullptr;
}

}  // namespace

uint32_t ze_kest_Utility_CopyNonInterleavePcmBuffer(const ZE_KEST_PcmBuffer_s *pstDst,
                                                    const ZE_KEST_PcmBuffer_s *pstSrc, uint32_t u32DstAdvance,
                                                    uint32_t u32SrcAdvance, uint32_t sztSamples,
                                                    uint32_t ePcmGroupType) {
  if (ePcmGroupType >= ZE_KEST_PCM_GROUPS) {
    KEST_ERR("Invaild ePcmGroupType(%d).\n", ePcmGroupType);
    return ZE_KEST_INVALID_ARGUMENT;
  }
  KEST_REQUIRE(pstDst != nullptr, "pstDst is NULL.\n");
  KEST_REQUIRE(pstSrc != nullptr, "pstSrc is NULL.\n");
  if (!HasStorage(*pstDst, ePcmGroupType) || !HasStorage(*pstSrc, ePcmGroupType)) return ZE_KEST_OK;
  const Side stSrc(*pstSrc, u32SrcAdvance, sizeof(int16_t));
  const Side stDst(*pstDst, u32DstAdvance, stSrc.u32Width);
  // Samples wider than the destination's would overrun the ends of its rings.
  if (stSrc.u32Width <= stDst.u32Width) CopySlots(stDst, stSrc, sztSamples, ePcmGroupType);
  return ZE_KEST_OK;
}
