// SPDX-License-Identifier: Apache-2.0
// Holds the sound back for a while. What is still held at the end comes out then.
#pragma once

#include <atomic>

#include "player/filters/delay_line.h"
#include "player/framework/filter.h"

namespace kest::player {

class Delay : public Filter {
 public:
  static constexpr uint32_t kMaxDelayMs = 1000;
  static constexpr const char *kDelaySetting = "delay_ms";

  static const FilterKind kKind;

  explicit Delay(const PcmFormat &format);

  // Callable from any thread; takes effect in the next cycle. A longer delay inserts silence, a shorter one
  // drops the frames that are held too long. Values above the maximum become the maximum.
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
  uint32_t silentFrames_ = 0;  // inserted silence; always the oldest frames of the line
  FrameBuffer buffer_;
};

}  // namespace kest::player
