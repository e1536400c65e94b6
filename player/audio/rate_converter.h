// SPDX-License-Identifier: Apache-2.0
// Converts interleaved frames to another sample rate.
#pragma once

#include <cstdint>
#include <memory>

#include <soxr.h>

namespace kest::player {

class RateConverter {
 public:
  struct Progress {
    uint32_t framesRead;
    uint32_t framesWritten;
  };

  // Rates in Hz; bitsPerSample: 16 or 32. Throws PlayerError when it cannot be set up.
  RateConverter(uint32_t inputRate, uint32_t outputRate, uint32_t channels, uint32_t bitsPerSample);

  // Reads and writes as many frames as it can. What it writes has no delay against the input and saturates.
  Progress Convert(const void *input, uint32_t inputFrames, void *output, uint32_t outputFrames);
  // After the last frame: writes what is still to come. Fewer frames than asked for are the end.
  uint32_t Drain(void *output, uint32_t outputFrames);

 private:
  struct Delete {
    void operator()(soxr *converter) const { soxr_delete(converter); }
  };

  std::unique_ptr<soxr, Delete> converter_;
};

}  // namespace kest::player
