// SPDX-License-Identifier: Apache-2.0
#include "player/framework/port_storage.h"

#include <algorithm>

#include "ze_kest/utility.h"

#include "player/base/relaxed.h"
#include "player/framework/metadata_block.h"

namespace kest::player {
namespace {

uint32_t Advance(uint32_t offset, uint32_t count, uint32_t capacity) {
  const uint32_t moved = offset + count;
  return moved >= capacity ? moved - capacity : moved;
}

// Time stamps count microseconds since the port's first frame.
int64_t FramesToUs(uint64_t frames, uint32_t sampleRate) {
  return static_cast<int64_t>(frames * 1000000 / sampleRate);
}

}  // namespace

PortStorage::PortStorage(const PcmFormat &format, PortCapacity capacity) : format_(format) {
  record_.bConnected = 1;
  LayOutPcm(capacity.frames);
  LayOutMetadata(capacity.metadataBlocks);
}

// A group has storage for all its channels, however few of them the format uses: debug functions of the
// library read and write every ring of a group.
void PortStorage::LayOutPcm(uint32_t frames) {
  const uint32_t bytes = sztPcmGroupChNumber[format_.Group()] * frames * format_.BytesPerSample();
  pcm_.resize((bytes + sizeof(uint32_t) - 1) / sizeof(uint32_t));

  ZE_KEST_PcmBuffer_s &pcm = record_.stPcm;
  pcm.apu8PcmGroupBuf[format_.Group()] = reinterpret_cast<uint8_t *>(pcm_.data());
  pcm.asztPcmAllocSize[format_.Group()] = bytes;
  pcm.sztPcmRingSamples = frames;
  pcm.sztPcmSpace = frames;
  pcm.stPcmInfo = format_.Info();
  pcm.u32PcmGroupNum = ZE_KEST_PCM_GROUPS;
  const PcmGroups groups = format_.Groups();
  std::copy(groups.begin(), groups.end(), pcm.astPcmGroup);
}

void PortStorage::LayOutMetadata(uint32_t blocks) {
  const uint32_t bytes = blocks * kMetadataBlockBytes;
  metadata_.resize(bytes / sizeof(uint64_t));
  record_.stMeta.pu8Buf = reinterpret_cast<uint8_t *>(metadata_.data());
  record_.stMeta.sztSize = bytes;
  record_.stMeta.sztSpace = bytes;
}

void PortStorage::CommitWritten() {
  ZE_KEST_PcmBuffer_s &pcm = record_.stPcm;
  StoreRelaxed(pcm.sztPcmLevel, pcm.sztPcmLevel + pcm.sztPcmWriteSize);
  StoreRelaxed(pcm.sztPcmSpace, pcm.sztPcmSpace - pcm.sztPcmWriteSize);
  StoreRelaxed(pcm.sztPcmWriteSize, 0u);

  ZE_KEST_DataBuffer_s &metadata = record_.stMeta;
  StoreRelaxed(metadata.sztLevel, metadata.sztLevel + metadata.sztWriteSize);
  StoreRelaxed(metadata.sztSpace, metadata.sztSpace - metadata.sztWriteSize);
  StoreRelaxed(metadata.sztWriteSize, 0u);
}

void PortStorage::ReleaseRead() {
  ZE_KEST_PcmBuffer_s &pcm = record_.stPcm;
  releasedFrames_ += pcm.sztPcmReadSize;
  StoreRelaxed(pcm.sztPcmReadOffset,
               Advance(pcm.sztPcmReadOffset, pcm.sztPcmReadSize, pcm.sztPcmRingSamples));
  StoreRelaxed(pcm.sztPcmLevel, pcm.sztPcmLevel - pcm.sztPcmReadSize);
  StoreRelaxed(pcm.sztPcmSpace, pcm.sztPcmSpace + pcm.sztPcmReadSize);
  StoreRelaxed(pcm.sztPcmReadSize, 0u);
  StoreRelaxed(pcm.s64PcmPts, FramesToUs(releasedFrames_, format_.sampleRate));

  ZE_KEST_DataBuffer_s &metadata = record_.stMeta;
  releasedBlocks_ += metadata.sztReadSize / kMetadataBlockBytes;
  StoreRelaxed(metadata.sztReadOffset,
               Advance(metadata.sztReadOffset, metadata.sztReadSize, metadata.sztSize));
  StoreRelaxed(metadata.sztLevel, metadata.sztLevel - metadata.sztReadSize);
  StoreRelaxed(metadata.sztSpace, metadata.sztSpace + metadata.sztReadSize);
  StoreRelaxed(metadata.sztReadSize, 0u);
  StoreRelaxed(metadata.s64Pts, FramesToUs(releasedBlocks_ * ZE_KEST_METADATA_SAMPLES, format_.sampleRate));
}

void PortStorage::Disconnect() {
  StoreRelaxed(record_.bConnected, 0u);
}

void PortStorage::CountXrun() {
  StoreRelaxed(record_.stPcm.u64PcmXrunCount, record_.stPcm.u64PcmXrunCount + 1);
}

bool PortStorage::MoveInto(PortStorage &to) {
  const uint32_t frames = std::min(FramesHeld(), to.record_.stPcm.sztPcmSpace);
  const uint32_t metadataBytes = std::min(MetadataBytesHeld(), to.record_.stMeta.sztSpace);
  if (frames == 0 && metadataBytes == 0) return false;

  CopyFrames(to, frames);
  CopyMetadata(to, metadataBytes);
  to.CommitWritten();
  ReleaseRead();
  return true;
}

void PortStorage::CopyFrames(PortStorage &to, uint32_t frames) {
  const ZE_KEST_PcmBuffer_s &source = record_.stPcm;
  const ZE_KEST_PcmBuffer_s &target = to.record_.stPcm;
  const uint32_t width = format_.BytesPerSample();
  const uint32_t sourceRing = source.sztPcmRingSamples * width;
  const uint32_t targetRing = target.sztPcmRingSamples * width;
  for (uint32_t slot = 0; slot < format_.channels; ++slot) {
    ze_kest_Utility_CopyFromRingToRingBuffer(
        target.apu8PcmGroupBuf[format_.Group()] + size_t{slot} * targetRing, targetRing,
        target.sztPcmReadOffset * width, target.sztPcmLevel * width,
        source.apu8PcmGroupBuf[format_.Group()] + size_t{slot} * sourceRing, sourceRing,
        source.sztPcmReadOffset * width, 0, frames * width);
  }
  record_.stPcm.sztPcmReadSize = frames;
  to.record_.stPcm.sztPcmWriteSize = frames;
}

void PortStorage::CopyMetadata(PortStorage &to, uint32_t bytes) {
  const ZE_KEST_DataBuffer_s &source = record_.stMeta;
  const ZE_KEST_DataBuffer_s &target = to.record_.stMeta;
  ze_kest_Utility_CopyFromRingToRingBuffer(target.pu8Buf, target.sztSize, target.sztReadOffset,
                                           target.sztLevel, source.pu8Buf, source.sztSize,
                                           source.sztReadOffset, 0, bytes);
  record_.stMeta.sztReadSize = bytes;
  to.record_.stMeta.sztWriteSize = bytes;
}

}  // namespace kest::player
