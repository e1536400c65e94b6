// SPDX-License-Identifier: Apache-2.0
#include "player/framework/pcm_format.h"

#include "ze_kest/utility.h"

namespace kest::player {

uint32_t PcmFormat::FirstChannel() const {
  return sztPcmGroupBaseChIdx[Group()];
}

ZE_KEST_PcmInfo_s PcmFormat::Info() const {
  return {channels, sampleRate, bitsPerSample, {}};
}

PcmGroups PcmFormat::Groups() const {
  PcmGroups groups{};
  for (ZE_KEST_PcmGroup_s &group : groups) {
    group.ePcmGroupType = -1;
    for (int32_t &slot : group.as32ChMap) {
      slot = -1;
    }
  }
  ZE_KEST_PcmGroup_s &used = groups[Group()];
  used.ePcmGroupType = static_cast<int32_t>(Group());
  used.u32ChannelCount = channels;
  for (uint32_t slot = 0; slot < channels; ++slot) {
    used.as32ChMap[slot] = static_cast<int32_t>(FirstChannel() + slot);
  }
  return groups;
}

}  // namespace kest::player
