// SPDX-License-Identifier: Apache-2.0
// The PCM format of a port, and where its channels lie in the channel groups. All ports of a run have samples
// of the same width.
#pragma once

#include <array>
#include <cstdint>

#include "ze_kest/model.h"

namespace kest::player {

constexpr uint32_t kMaxChannels = ZE_KEST_PCM_GROUP_SLOTS;

using PcmGroups = std::array<ZE_KEST_PcmGroup_s, ZE_KEST_PCM_GROUPS>;

struct PcmFormat {
  uint32_t channels;       // 1 to kMaxChannels
  uint32_t sampleRate;     // Hz
  uint32_t bitsPerSample;  // 16 or 32, the width of the ports

  // Mono and stereo use the two-channel group, more channels the first ten-channel group.
  [[nodiscard]] uint32_t Group() const { return channels <= 2 ? 0 : 1; }
  [[nodiscard]] uint32_t BytesPerSample() const { return bitsPerSample / 8; }

  // Numbers of the first and the last channel, counted over all groups.
  [[nodiscard]] uint32_t FirstChannel() const;
  [[nodiscard]] uint32_t LastChannel() const { return FirstChannel() + channels - 1; }

  bool operator==(const PcmFormat &other) const {
    return channels == other.channels && sampleRate == other.sampleRate &&
           bitsPerSample == other.bitsPerSample;
  }

  [[nodiscard]] ZE_KEST_PcmInfo_s Info() const;
  [[nodiscard]] PcmGroups Groups() const;
};

}  // namespace kest::player
