// SPDX-License-Identifier: Apache-2.0
// Makes other channels out of those that come in, by a matrix. Sums that become too loud saturate.
#pragma once

#include "player/filters/mix_matrix.h"
#include "player/framework/filter.h"

namespace kest::player {

class DownMix : public Filter {
 public:
  static const FilterKind kKind;
  static constexpr const char *kMatrixSetting = "matrix";

  DownMix(const PcmFormat &format, MixMatrix matrix);

  // Callable from any thread.
  [[nodiscard]] uint32_t InputChannels() const { return Format().channels; }
  [[nodiscard]] uint32_t OutputChannels() const { return OutputFormat().channels; }

 protected:
  void Process() override;

 private:
  template <typename Sample>
  void MixFrames(uint32_t frames);

  MixMatrix matrix_;
  FrameBuffer input_;
  FrameBuffer mixed_;
};

}  // namespace kest::player
