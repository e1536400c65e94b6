// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/channel_move.h"
#include "utility/port/pcm_rings.h"
#include "utility/port/ring_position.h"

namespace {

constexpr uint32_t kDefaultChannels = 2;
constexpr uint32_t kDefaultBitWidth = 16;

// The part of a group's rings that corresponds to the frames of an interleaved buffer.
struct Frames {
  uint32_t u32Group;
  uint32_t u32Channels;  // in a frame
  uint32_t u32Width;     // bytes per sample, in the rings and in the frames
  uint32_t u32Advance;   // samples after the oldest unread one
  uint32_t sztSamples;
};

bool IsGroup(const char *pszFunction, uint32_t ePcmGroupType) {
  if (ePcmGroupType < ZE_KEST_PCM_GROUPS) return true;
  KEST_ERR_AS(pszFunction, "invaild ePcmGroupType(%d)\n", ePcmGroupType);
  return false;
}

// Deliberate: channel k of a frame belongs to slot k of the group, whatever the channel map says. Channels
// without a ring in the group are skipped.
template <typename Ring, typename Linear>
void MoveInterleaved(const kest::MoverTable<kest::Mover<Ring, Linear>> &stTable,
                     const ZE_KEST_PcmBuffer_s &stPcm, const Frames &stFrames, Linear *pu8Linear) {
  if (stPcm.apu8PcmGroupBuf[stFrames.u32Group] == nullptr) return;
  const auto stWay = stTable.For(stFrames.u32Width, stFrames.u32Channels);
  const uint32_t u32Position =
      kest::WrapOnce(stPcm.sztPcmReadOffset + stFrames.u32Advance, stPcm.sztPcmRingSamples);
  const kest::RingPlan stPlan =
      kest::PlanPort(stPcm, u32Position, stFrames.sztSamples, stFrames.u32Width, stWay.u32Unit);
  const uint32_t u32Slots = std::min(stFrames.u32Channels, sztPcmGroupChNumber[stFrames.u32Group]);
  stWay.pfnMove({kest::SlotRing(stPcm, stFrames.u32Group, 0, stFrames.u32Width),
                 kest::RingPitch(stPcm, stFrames.u32Width), pu8Linear, stFrames.u32Channels, u32Slots},
                stPlan);
}

}  // namespace

uint32_t ze_kest_Utility_ConvertInterleaveToNonInterleave(uint32_t u32ChNum, uint32_t u32BitWidth,
                                                          const ZE_KEST_PcmBuffer_s *pstPcm,
                                                          uint32_t ePcmGroupType, uint32_t u32Advance,
                                                          const void *pvSrc, uint32_t sztSamples) {
  if (!IsGroup(__func__, ePcmGroupType)) return ZE_KEST_INVALID_ARGUMENT;
  KEST_REQUIRE(pstPcm != nullptr, "pstPcm is NULL.\n");
  KEST_REQUIRE(pvSrc != nullptr, "pvSrc is NULL.\n");
  if (u32ChNum == 0 || u32ChNum > sztPcmGroupChNumber[ePcmGroupType]) {
    KEST_INFO("Wrong ch %d\n", u32ChNum);
    u32ChNum = kDefaultChannels;
  }
  if (u32BitWidth == 0) {
    KEST_INFO("Wrong u32BitWidth\n");
    u32BitWidth = kDefaultBitWidth;
  }
  MoveInterleaved(kest::kWriteAsIs, *pstPcm,
                  {ePcmGroupType, u32ChNum, u32BitWidth >> 3, u32Advance, sztSamples},
                  static_cast<const uint8_t *>(pvSrc));
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_ConvertNonInterleaveToInterleave(void *pvDst, const ZE_KEST_PcmBuffer_s *pstPcm,
                                                          uint32_t ePcmGroupType, uint32_t u32ChNum,
                                                          uint32_t u32Advance, uint32_t sztSamples,
                                                          uint32_t u32BytesPerSample) {
  if (!IsGroup(__func__, ePcmGroupType)) return ZE_KEST_INVALID_ARGUMENT;
  if (u32ChNum == 0) return ZE_KEST_OK;
  KEST_REQUIRE(pvDst != nullptr, "pvDst is NULL.\n");
  KEST_REQUIRE(pstPcm != nullptr, "pstPcm is NULL.\n");
  MoveInterleaved(kest::kReadAsIs, *pstPcm,
                  {ePcmGroupType, u32ChNum, u32BytesPerSample, u32Advance, sztSamples},
                  static_cast<uint8_t *>(pvDst));
  return ZE_KEST_OK;
}
