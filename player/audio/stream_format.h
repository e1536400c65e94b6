// SPDX-License-Identifier: Apache-2.0
// The format of samples that come in a stream.
#pragma once

#include <cstdint>
#include <string>

namespace kest::player {

struct StreamFormat {
  static constexpr uint64_t kToTheEnd = UINT64_MAX;

  uint32_t channels;
  uint32_t sampleRate;         // Hz
  uint32_t bytesPerSample;     // 1 to 8
  int coding;                  // libsndfile's subtype and byte order
  uint64_t bytes = kToTheEnd;  // of all frames together
};

// Raw samples, as a text "RATE:CHANNELS:SAMPLES" describes them. Throws PlayerError when it does not.
StreamFormat ParseRawFormat(const std::string &text);

constexpr const char *kRawFormatNeeded = "RATE:CHANNELS:SAMPLES, such as \"48000:2:s16le\"";

}  // namespace kest::player
