// SPDX-License-Identifier: Apache-2.0
// The player's output: writes an audio file, in real time if wanted, or plays to a sound card.
#pragma once

#include <atomic>
#include <memory>
#include <optional>

#include "player/audio/audio_sink.h"
#include "player/filters/metadata_counter.h"
#include "player/filters/playback_clock.h"
#include "player/framework/filter.h"

namespace kest::player {

class SpeakerOutput : public Filter {
 public:
  static const FilterKind kKind;
  static constexpr const char *kFileSetting = "file";
  static constexpr uint64_t kNoLimit = UINT64_MAX;

  // frameLimit: number of frames after which the output ends. realTime: keeps time itself, unless the sink
  // does.
  SpeakerOutput(const PcmFormat &format, std::unique_ptr<AudioSink> sink, uint64_t frameLimit, bool realTime);

  void Finish() override { sink_->Close(); }

  // Callable from any thread.
  [[nodiscard]] uint64_t FramesPlayed() const { return framesPlayed_; }
  [[nodiscard]] double SecondsPlayed() const {
    return static_cast<double>(framesPlayed_) / Format().sampleRate;
  }
  // Only after the run.
  [[nodiscard]] const MetadataCounter &Metadata() const { return metadata_; }

 protected:
  void Process() override;
  [[nodiscard]] bool IsComplete() const override;

 private:
  void PlayFrames(uint32_t frames);
  void ConsumeMetadata();

  std::unique_ptr<AudioSink> sink_;
  uint64_t frameLimit_;
  std::optional<PlaybackClock> clock_;
  std::atomic<uint64_t> framesPlayed_{0};
  MetadataCounter metadata_;
  FrameBuffer buffer_;
};

}  // namespace kest::player
