// SPDX-License-Identifier: Apache-2.0
#include "player/framework/metadata_writer.h"

#include "ze_kest/utility.h"

namespace kest::player {

MetadataWriter::MetadataWriter(uint32_t source) {
  block_.source = source;
  block_.payloadLength = kMetadataPayloadBytes;
}

// A block is written with the last of its frames, so that it never waits for frames downstream.
uint32_t MetadataWriter::Write(ZE_KEST_Filter_s &filter, uint32_t frames) {
  uint32_t blocks = 0;
  framesOfBlock_ += frames;
  for (; framesOfBlock_ >= ZE_KEST_METADATA_SAMPLES; framesOfBlock_ -= ZE_KEST_METADATA_SAMPLES) {
    ZE_KEST_DataBuffer_s &ring = filter.apstOutPort[0]->stMeta;
    ze_kest_Utility_CopyFromRingToRingBuffer(
        ring.pu8Buf, ring.sztSize, ring.sztReadOffset, ring.sztLevel + ring.sztWriteSize,
        reinterpret_cast<const uint8_t *>(&block_), kMetadataBlockBytes, 0, 0, kMetadataBlockBytes);
    ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(&filter, kMetadataBlockBytes);
    ++block_.number;
    block_.framePosition += ZE_KEST_METADATA_SAMPLES;
    ++blocks;
  }
  return blocks;
}

}  // namespace kest::player
