// SPDX-License-Identifier: Apache-2.0
// What lies in the rings of a mono port of 32 bits.
#pragma once

#include "player/framework/metadata_block.h"
#include "player/framework/port_storage.h"

namespace kest::test {

constexpr player::PcmFormat kMono = {1, 48000, 32};

// The sample at a distance from the oldest one, in samples.
inline int32_t &SampleAt(player::PortStorage &port, uint32_t distance) {
  const ZE_KEST_PcmBuffer_s &pcm = port.Record().stPcm;
  auto *ring = static_cast<int32_t *>(static_cast<void *>(pcm.apu8PcmGroupBuf[0]));
  return ring[(pcm.sztPcmReadOffset + distance) % pcm.sztPcmRingSamples];
}

// The metadata block at a distance from the oldest one, in bytes.
inline player::MetadataBlock &BlockAt(player::PortStorage &port, uint32_t distance) {
  const ZE_KEST_DataBuffer_s &metadata = port.Record().stMeta;
  const uint32_t position = (metadata.sztReadOffset + distance) % metadata.sztSize;
  return *static_cast<player::MetadataBlock *>(static_cast<void *>(metadata.pu8Buf + position));
}

}  // namespace kest::test
