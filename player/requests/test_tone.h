// SPDX-License-Identifier: Apache-2.0
// Plays a tone into an input port ("kest_send_test_tone"): it takes the place of what the port holds.
#pragma once

#include <cstdint>
#include <optional>

#include "ze_kest/model.h"

namespace kest::player {

class TestTone {
 public:
  static constexpr uint32_t kHertz = 1000;
  static constexpr double kPeak = 0.5;  // of full scale

  // Before the filter reads its input.
  void FeedInto(const ZE_KEST_Filter_s &filter);
  // After its turn, before what it read is released.
  void AccountFor(const ZE_KEST_Filter_s &filter);

 private:
  void Begin(const ZE_KEST_Filter_s &filter, uint32_t port);
  void Overwrite(ZE_KEST_PcmBuffer_s &pcm);

  std::optional<uint32_t> asked_;  // the number of the port that is asked for,
  bool hasPort_ = false;           // and whether the filter has it
  uint32_t tonedSamples_ = 0;      // how many of the samples that the port holds are the tone already
  uint32_t position_ = 0;          // of the next sample, within a second
};

}  // namespace kest::player
