// SPDX-License-Identifier: Apache-2.0
// The samples in a port's rings, channel by channel.
#pragma once

#include <cstdint>
#include <cstring>

#include "ze_kest/model.h"

namespace kest::player {

// A run of samples in every ring; it may go round the ring's end.
struct PcmRun {
  const ZE_KEST_PcmBuffer_s &pcm;
  uint32_t first;  // index in the ring
  uint32_t samples;
};

// Calls visit(channel, index, sample) for every sample of the run, one channel after the other; channels and
// indexes count from 0. sample points to an int16_t or an int32_t, the widths of this player's ports.
template <typename Sample, typename Visit>
void ForEachSampleOf(const PcmRun &run, Visit &&visit) {
  const ZE_KEST_PcmBuffer_s &pcm = run.pcm;
  uint32_t channel = 0;
  for (uint32_t group = 0; group < ZE_KEST_PCM_GROUPS; ++group) {
    if (pcm.apu8PcmGroupBuf[group] == nullptr) continue;
    auto *ring = static_cast<Sample *>(static_cast<void *>(pcm.apu8PcmGroupBuf[group]));
    for (uint32_t slot = 0; slot < pcm.astPcmGroup[group].u32ChannelCount; ++slot, ++channel) {
      for (uint32_t i = 0; i < run.samples; ++i)
        visit(channel, i, &ring[(run.first + i) % pcm.sztPcmRingSamples]);
      ring += pcm.sztPcmRingSamples;
    }
  }
}

template <typename Visit>
void ForEachSample(const PcmRun &run, Visit &&visit) {
  if (run.pcm.stPcmInfo.u32BitWidth == 16) {
    ForEachSampleOf<int16_t>(run, visit);
  } else {
    ForEachSampleOf<int32_t>(run, visit);
  }
}

}  // namespace kest::player
