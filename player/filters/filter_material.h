// SPDX-License-Identifier: Apache-2.0
// What a filter is made from besides its own settings.
#pragma once

#include <cstdint>
#include <optional>

#include "player/audio/audio_reader.h"
#include "player/framework/pcm_format.h"

namespace kest::player {

struct FilterMaterial {
  PcmFormat format;       // of what comes in
  AudioReader *reader;    // Lpcm takes over its input's reader
  SampleBits outputBits;  // of the output's file
  uint32_t source;        // number of the input, from 1; 0 in the output's pipeline
  bool loop;              // an input starts over at its end
  bool realTime;
  std::optional<double> seconds;  // after which the output ends
};

}  // namespace kest::player
