// SPDX-License-Identifier: Apache-2.0
// Measures the sound over a number of cycles ("kest_calpcmlev"): what the filter writes to its first output,
// or reads from its first input when it has no output.
#pragma once

#include <array>
#include <cstdint>

#include "ze_kest/model.h"

namespace kest::player {

class PcmLevel {
 public:
  // Whether a measurement goes on, also after the published count has come to 0.
  [[nodiscard]] bool IsRunning() const { return cyclesLeft_ > 0; }

  // After the filter's turn, before what it wrote is committed.
  void Measure(const ZE_KEST_Filter_s &filter);

 private:
  struct Channel {
    double peak;  // of full scale
    double squares;
  };

  void Begin(uint32_t cycles);
  void Add(const ZE_KEST_Filter_s &filter);
  void CountDown();
  void Report(const ZE_KEST_Filter_s &filter) const;

  uint32_t cycles_ = 0;
  uint32_t cyclesLeft_ = 0;
  uint64_t samples_ = 0;  // of each channel
  std::array<Channel, ZE_KEST_PCM_CHANNEL_ENTRIES> channels_{};
};

}  // namespace kest::player
