// SPDX-License-Identifier: Apache-2.0
// Holds the sound back for a while; at the end what is held back still comes out.
#pragma once

#include <atomic>

#include "player/filters/delay_line.h"
#include "player/framework/filter.h"

namespace kest::player {

class Delay : public Filter {
 public:
  static constexpr uint32_t kMaxDelayMs = 1000;

  static const FilterKind kKind;

  explicit Delay(const PcmFormat &format);

  // From any thread; in force from the next cycle: a longer delay inserts silence, a shorter one drops what
  // it would have held. More than the maximum becomes the maximum.
  void SetDelayMs(uint32_t delayMs);
  [[nodiscard]] uint32_t DelayMs() const { return delayMs_; }

  // Metadata waits at the input until its frames leave the filter.
  [[nodiscard]] PortCapacity InputCapacity() const override;

 protected:
  void Process() override;
  [[nodiscard]] bool IsComplete() const override;

 private:
  template <typename Sample>
  void ProcessAs();
  uint32_t AdjustDelay();
  uint32_t CountLeaving(uint32_t frames);
  [[nodiscard]] uint32_t MsToFrames(uint32_t ms) const;

  std::atomic<uint32_t> delayMs_{0};
  DelayLine line_;
  uint32_t silentFrames_ = 0;  // inserted silence, the oldest frames of the line
  FrameBuffer buffer_;
};

}  // namespace kest::player
