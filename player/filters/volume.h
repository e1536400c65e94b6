// SPDX-License-Identifier: Apache-2.0
// Gain and mute. 0 dB passes the samples unchanged; samples that become too loud saturate.
#pragma once

#include <atomic>

#include "player/framework/filter.h"

namespace kest::player {

class Volume : public Filter {
 public:
  // The maximum is what the fixed-point gain can hold; below the minimum nothing is left of a sample.
  static constexpr int kMinGainDb = -144;
  static constexpr int kMaxGainDb = 53;
  static constexpr const char *kGainSetting = "gain_db";

  static const FilterKind kKind;

  explicit Volume(const PcmFormat &format) : Filter(kKind, format) {}

  // Callable from any thread; takes effect in the next cycle. A gain outside the limits becomes the nearest
  // limit.
  void SetGainDb(int gainDb);
  [[nodiscard]] int GainDb() const { return gainDb_; }
  void SetMute(bool mute) { mute_ = mute; }
  [[nodiscard]] bool Mute() const { return mute_; }

 protected:
  void Process() override;

 private:
  template <typename Sample>
  void ProcessAs();
  [[nodiscard]] uint32_t FramesInOnePiece() const;
  [[nodiscard]] uint32_t LinearGain() const;

  std::atomic<int> gainDb_{0};
  std::atomic<bool> mute_{false};
  FrameBuffer buffer_;
};

}  // namespace kest::player
