// SPDX-License-Identifier: Apache-2.0
// Converts the sample rate. At the rate that it is to give it passes the samples unchanged.
#pragma once

#include <optional>

#include "player/audio/rate_converter.h"
#include "player/framework/filter.h"
#include "player/framework/metadata_writer.h"

namespace kest::player {

class Src : public Filter {
 public:
  static const FilterKind kKind;
  static constexpr const char *kRateSetting = "rate_hz";
  static constexpr int kMinRateHz = 4000;
  static constexpr int kMaxRateHz = 768000;

  // source: number of the input that it is part of; 0: its input's metadata says so.
  Src(const PcmFormat &format, uint32_t outputRateHz, uint32_t source);

  // Callable from any thread.
  [[nodiscard]] uint32_t InputRateHz() const { return Format().sampleRate; }
  [[nodiscard]] uint32_t OutputRateHz() const { return OutputFormat().sampleRate; }

 protected:
  void Process() override;
  [[nodiscard]] bool IsComplete() const override { return Filter::IsComplete() && drained_; }

 private:
  template <typename Sample>
  uint32_t ConvertInput(Sample *converted, uint32_t room);
  template <typename Sample>
  uint32_t Drain(Sample *converted, uint32_t room);
  void ConsumeMetadata();

  std::optional<RateConverter> converter_;  // none when the rates are the same
  bool drained_ = false;
  MetadataWriter metadata_;
  FrameBuffer input_;
  FrameBuffer converted_;
};

}  // namespace kest::player
