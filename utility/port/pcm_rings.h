// SPDX-License-Identifier: Apache-2.0
// Locates the channel rings of a port.
#pragma once

#include <algorithm>

#include "ze_kest/model.h"

#include "utility/port/ring_plan.h"

namespace kest {

inline uint32_t BytesPerSample(const ZE_KEST_PcmBuffer_s &stPcm) {
  return stPcm.stPcmInfo.u32BitWidth >> 3;
}

// The distance in bytes between consecutive rings of a group, for samples of the given width or of the
// port's.
inline size_t RingPitch(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Width) {
  return size_t{stPcm.sztPcmRingSamples} * u32Width;
}

inline size_t RingPitch(const ZE_KEST_PcmBuffer_s &stPcm) {
  return RingPitch(stPcm, BytesPerSample(stPcm));
}

// The ring of a slot. The group must have storage.
inline uint8_t *SlotRing(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Group, uint32_t u32Slot,
                         uint32_t u32Width) {
  return stPcm.apu8PcmGroupBuf[u32Group] + u32Slot * RingPitch(stPcm, u32Width);
}

inline uint8_t *SlotRing(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Group, uint32_t u32Slot) {
  return SlotRing(stPcm, u32Group, u32Slot, BytesPerSample(stPcm));
}

inline bool CarriesChannel(const ZE_KEST_PcmGroup_s &stGroup, uint32_t u32Slot) {
  return stGroup.as32ChMap[u32Slot] != -1;
}

// Slots in use, limited to the slots of the record.
inline uint32_t SlotCount(const ZE_KEST_PcmGroup_s &stGroup) {
  return std::min<uint32_t>(stGroup.u32ChannelCount, ZE_KEST_PCM_GROUP_SLOTS);
}

// Units in a sample of u32Width bytes for movers that count bytes, samples, or, with a unit of 0, nothing.
inline size_t UnitsPerSample(uint32_t u32Width, uint32_t u32Unit) {
  if (u32Unit == 0) return 0;
  return u32Unit == 1 ? u32Width : 1;
}

// The plan of a transfer, common to all channel rings of the port: to the end of the ring and on from its
// start, for at most one lap. Position and amount are in samples, of which a port's ring holds whole ones.
// The plan is empty for a position beyond the ring.
inline RingPlan PlanPort(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Position, uint32_t sztSamples,
                         uint32_t u32Width, uint32_t u32Unit) {
  if (u32Position > stPcm.sztPcmRingSamples) return {};
  const uint32_t sztFirst = std::min(sztSamples, stPcm.sztPcmRingSamples - u32Position);
  const uint32_t sztSecond = std::min(sztSamples - sztFirst, stPcm.sztPcmRingSamples);
  const size_t sztUnits = UnitsPerSample(u32Width, u32Unit);
  return {size_t{u32Position} * u32Width, {sztFirst * sztUnits, 0}, {sztSecond * sztUnits, 0}};
}

inline RingPlan PlanPort(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Position, uint32_t sztSamples,
                         uint32_t u32Unit) {
  return PlanPort(stPcm, u32Position, sztSamples, BytesPerSample(stPcm), u32Unit);
}

}  // namespace kest
