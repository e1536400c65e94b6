// SPDX-License-Identifier: Apache-2.0
#include "player/audio/rate_converter.h"

#include <string>

#include "player/base/player_error.h"

namespace kest::player {

RateConverter::RateConverter(uint32_t inputRate, uint32_t outputRate, uint32_t channels,
                             uint32_t bitsPerSample) {
  const bool is16Bit = bitsPerSample == 16;
  const soxr_datatype_t type = is16Bit ? SOXR_INT16_I : SOXR_INT32_I;
  soxr_io_spec_t io = soxr_io_spec(type, type);
  io.flags |= SOXR_NO_DITHER;  // the same input gives the same output
  const soxr_quality_spec_t quality = soxr_quality_spec(is16Bit ? SOXR_HQ : SOXR_VHQ, 0);
  soxr_error_t error = nullptr;
  converter_.reset(soxr_create(inputRate, outputRate, channels, &error, &io, &quality, nullptr));
  if (error != nullptr) {
    throw PlayerError("cannot convert " + std::to_string(inputRate) + " Hz to " + std::to_string(outputRate) +
                      " Hz: " + error);
  }
}

RateConverter::Progress RateConverter::Convert(const void *input, uint32_t inputFrames, void *output,
                                               uint32_t outputFrames) {
  size_t read = 0;
  size_t written = 0;
  soxr_process(converter_.get(), input, inputFrames, &read, output, outputFrames, &written);
  return {static_cast<uint32_t>(read), static_cast<uint32_t>(written)};
}

uint32_t RateConverter::Drain(void *output, uint32_t outputFrames) {
  size_t written = 0;
  soxr_process(converter_.get(), nullptr, 0, nullptr, output, outputFrames, &written);
  return static_cast<uint32_t>(written);
}

}  // namespace kest::player
