// SPDX-License-Identifier: Apache-2.0
// Tells when the frames of an output are due, counted from the first one.
#pragma once

#include <chrono>
#include <cstdint>

namespace kest::player {

class PlaybackClock {
 public:
  explicit PlaybackClock(uint32_t sampleRate) : sampleRate_(sampleRate) {}

  // Sleeps until the next frames are due, which follow all earlier ones. False when they are late by more
  // than their own duration; the clock then restarts from now.
  bool WaitFor(uint32_t frames);

 private:
  using Clock = std::chrono::steady_clock;

  [[nodiscard]] std::chrono::microseconds Duration(uint64_t frames) const {
    return std::chrono::microseconds(frames * 1000000 / sampleRate_);
  }
  void Restart(Clock::time_point now);

  uint32_t sampleRate_;
  bool running_ = false;
  uint64_t framesPlayed_ = 0;
  Clock::time_point start_;
};

}  // namespace kest::player
