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

// The plan of a transfer, common to all channel rings of the port. Position and amount are in samples. A
// position beyond the ring is rejected before it is converted to bytes, where it could wrap around to a valid
// one.
inline RingPlan PlanPort(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Position, uint32_t sztSamples,
                         uint32_t u32Width, uint32_t u32Unit) {
  if (u32Position > stPcm.sztPcmRingSamples) return {};
  return PlanRing(RingPitch(stPcm, u32Width), size_t{u32Position} * u32Width, uint64_t{sztSamples} * u32Width,
                  u32Unit);
}

inline RingPlan PlanPort(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Position, uint32_t sztSamples,
                         uint32_t u32Unit) {
  return PlanPort(stPcm, u32Position, sztSamples, BytesPerSample(stPcm), u32Unit);
}

}  // namespace kest
