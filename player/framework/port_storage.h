// SPDX-License-Identifier: Apache-2.0
// A port: its record and the rings behind it.
//
// A port between two filters of a pipeline is the output of one and the input of the other. Filters add to
// the cycle's read and write sizes; commit and release turn those into levels, spaces and offsets.
#pragma once

#include <cstdint>
#include <vector>

#include "ze_kest/model.h"

#include "player/framework/pcm_format.h"

namespace kest::player {

struct PortCapacity {
  uint32_t frames;
  uint32_t metadataBlocks;

  // Room for the frames and their metadata: one extra block for frames that start within a block, and one for
  // a block that is handed over before its frames.
  static PortCapacity ForFrames(uint32_t frames) { return {frames, frames / ZE_KEST_METADATA_SAMPLES + 2}; }
};

class PortStorage {
 public:
  PortStorage(const PcmFormat &format, PortCapacity capacity);
  PortStorage(const PortStorage &) = delete;
  PortStorage &operator=(const PortStorage &) = delete;

  [[nodiscard]] ZE_KEST_Port_s &Record() { return record_; }
  [[nodiscard]] uint32_t FramesHeld() const { return record_.stPcm.sztPcmLevel; }
  [[nodiscard]] uint32_t MetadataBytesHeld() const { return record_.stMeta.sztLevel; }
  [[nodiscard]] bool IsEmpty() const { return FramesHeld() == 0 && MetadataBytesHeld() == 0; }

  // Makes readable what the producer wrote in this cycle.
  void CommitWritten();
  // Frees what the consumer read in this cycle.
  void ReleaseRead();
  void Disconnect();
  void CountXrun();

  // Moves as much as fits into a port of the same format. False when nothing could be moved.
  bool MoveInto(PortStorage &to);

 private:
  void LayOutPcm(uint32_t frames);
  void LayOutMetadata(uint32_t blocks);
  void CopyFrames(PortStorage &to, uint32_t frames);
  void CopyMetadata(PortStorage &to, uint32_t bytes);

  PcmFormat format_;
  std::vector<uint32_t> pcm_;  // words, to align the widest sample
  std::vector<uint64_t> metadata_;
  uint64_t releasedFrames_ = 0;
  uint64_t releasedBlocks_ = 0;
  ZE_KEST_Port_s record_{};
};

}  // namespace kest::player
