// SPDX-License-Identifier: Apache-2.0
#include "player/filters/playback_clock.h"

#include <thread>

namespace kest::player {

bool PlaybackClock::WaitFor(uint32_t frames) {
  const Clock::time_point now = Clock::now();
  if (!running_) Restart(now);
  const Clock::time_point due = start_ + Duration(framesPlayed_);
  const bool late = now > due + Duration(frames);
  if (late) Restart(now);
  framesPlayed_ += frames;
  if (!late) std::this_thread::sleep_until(due);
  return !late;
}

void PlaybackClock::Restart(Clock::time_point now) {
  running_ = true;
  framesPlayed_ = 0;
  start_ = now;
}

}  // namespace kest::player
