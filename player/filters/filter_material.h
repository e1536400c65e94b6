// SPDX-License-Identifier: Apache-2.0
// What a filter is made from besides its own settings.
#pragma once

#include <cstdint>

#include "player/audio/audio_reader.h"
#include "player/framework/pcm_format.h"

namespace kest::player {

struct FilterMaterial {
  static constexpr uint64_t kNoLimit = UINT64_MAX;

  const PcmFormat &format;
  AudioReader &reader;  // Lpcm takes over its input's reader; the output copies the format
  uint32_t source;      // number of the input, from 1
  bool loop;            // an input starts over at its end
  bool realTime;
  uint64_t frameLimit;  // after which the output ends
};

}  // namespace kest::player
