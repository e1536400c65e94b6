// SPDX-License-Identifier: Apache-2.0
// A first-in-first-out store of frames, with one ring per channel.
#pragma once

#include <cstdint>
#include <vector>

#include "player/framework/pcm_format.h"

namespace kest::player {

// The caller must respect the capacity and what is held. Frames are interleaved.
class DelayLine {
 public:
  DelayLine(const PcmFormat &format, uint32_t capacityFrames);

  [[nodiscard]] uint32_t FramesHeld() const { return held_; }

  void Append(const void *interleaved, uint32_t frames);
  void Take(void *interleaved, uint32_t frames);
  // Puts silence in front of everything that is held.
  void PrependSilence(uint32_t frames);
  void Drop(uint32_t frames);

 private:
  [[nodiscard]] uint32_t RingBytes() const { return capacity_ * format_.BytesPerSample(); }
  [[nodiscard]] uint8_t *Ring(uint32_t channel);
  [[nodiscard]] uint32_t Position(uint32_t frames) const { return (start_ + frames) % capacity_; }

  PcmFormat format_;
  uint32_t capacity_;
  uint32_t start_ = 0;  // oldest frame
  uint32_t held_ = 0;
  std::vector<uint32_t> storage_;  // words, to align the widest sample
};

}  // namespace kest::player
