// SPDX-License-Identifier: Apache-2.0
// The player's decoder: reads an audio file or a stream and generates its metadata.
#pragma once

#include <atomic>

#include "player/audio/audio_reader.h"
#include "player/framework/filter.h"
#include "player/framework/metadata_writer.h"

namespace kest::player {

class Lpcm : public Filter {
 public:
  static const FilterKind kKind;
  static constexpr const char *kFileSetting = "file";
  static constexpr const char *kRawSetting = "raw";

  // source: number of the input, stored in its metadata; loop: start over at the end of the file.
  Lpcm(const PcmFormat &format, AudioReader reader, uint32_t source, bool loop);

  // Complete blocks of ZE_KEST_METADATA_SAMPLES frames so far. Callable from any thread.
  [[nodiscard]] uint32_t BlocksDecoded() const { return blocksDecoded_; }

  void AwaitInput() override { reader_.Await(kCycleFrames); }
  void StopWaiting() override { reader_.StopWaiting(); }
  void Finish() override { reader_.CheckIsWhole(); }

 protected:
  void Process() override;
  [[nodiscard]] bool IsComplete() const override { return atEnd_; }

 private:
  template <typename Sample>
  uint32_t ReadFile(Sample *interleaved, uint32_t frames);
  bool StartOver();

  AudioReader reader_;
  bool loop_;
  bool atEnd_ = false;
  uint64_t framesSinceStart_ = 0;  // of the file, in this round
  std::atomic<uint32_t> blocksDecoded_{0};
  MetadataWriter metadata_;
  FrameBuffer buffer_;
};

}  // namespace kest::player
