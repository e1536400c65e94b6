// SPDX-License-Identifier: Apache-2.0
// How the instruments, which read and write a port's storage from outside the filter, see its channel groups:
// one plane, holding one ring, for every channel that a group can have. Nothing here trusts the values that a
// filter or its framework has left in a port.
#pragma once

#include <algorithm>
#include <optional>

#include "ze_kest/port.h"

#include "utility/port/pcm_rings.h"
#include "utility/port/ring_position.h"

namespace kest {

// Bytes of a group's storage: the framework's allocation size or, without one, planes for all channels of the
// group. Their samples have the port's width, or u32DefaultWidth bytes when the port has none.
inline uint64_t GroupBytes(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Group, uint32_t u32DefaultWidth) {
  if (stPcm.asztPcmAllocSize[u32Group] != 0) return stPcm.asztPcmAllocSize[u32Group];
  const uint32_t u32Width = stPcm.stPcmInfo.u32BitWidth == 0 ? u32DefaultWidth : BytesPerSample(stPcm);
  constexpr uint32_t kWidestSample = sizeof(int32_t);
  return uint64_t{sztPcmGroupChNumber[u32Group]} * stPcm.sztPcmRingSamples *
         std::min(u32Width, kWidestSample);
}

// How many of the group's planes fit into its storage when a sample has u32Width bytes; 0 without storage.
inline uint32_t PlaneCount(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Group, uint32_t u32Width) {
  const uint64_t u64PlaneBytes = uint64_t{stPcm.sztPcmRingSamples} * u32Width;
  if (stPcm.apu8PcmGroupBuf[u32Group] == nullptr || u64PlaneBytes == 0) return 0;
  const uint64_t u64Planes = GroupBytes(stPcm, u32Group, u32Width) / u64PlaneBytes;
  return static_cast<uint32_t>(std::min<uint64_t>(u64Planes, sztPcmGroupChNumber[u32Group]));
}

// The position in the ring u32Advance units after the read offset. Empty when the offset or the advance lies
// beyond the ring.
inline std::optional<uint32_t> RingPosition(uint32_t sztRing, uint32_t sztReadOffset, uint32_t u32Advance) {
  if (sztReadOffset >= sztRing || u32Advance > sztRing) return std::nullopt;
  return WrapOnce(sztReadOffset + u32Advance, sztRing);
}

}  // namespace kest
