// SPDX-License-Identifier: Apache-2.0
// Measures what flows through an input and an output ("kest_calculate_data_rate") and reports it once a
// second.
#pragma once

#include <chrono>
#include <cstdint>

#include "ze_kest/model.h"

namespace kest::player {

class DataRate {
 public:
  using Clock = std::chrono::steady_clock;

  // After the filter's turn, before its data is released and committed.
  void Count(const ZE_KEST_Filter_s &filter, Clock::time_point now);

 private:
  struct Flow {
    uint64_t samples;
    uint64_t pcmBytes;
    uint64_t metadataBytes;
  };
  struct Ports {
    uint32_t input;
    uint32_t output;
    bool operator!=(const Ports &other) const { return input != other.input || output != other.output; }
  };

  void Begin(const Ports &ports, Clock::time_point now);
  void Report(const ZE_KEST_Filter_s &filter, std::chrono::microseconds elapsed) const;

  bool running_ = false;
  Ports ports_{};
  Clock::time_point start_;
  Flow in_{};
  Flow out_{};
};

}  // namespace kest::player
