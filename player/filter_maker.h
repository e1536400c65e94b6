// SPDX-License-Identifier: Apache-2.0
// Makes the filters of a layout.
#pragma once

#include <cstdint>
#include <memory>

#include "player/audio_reader.h"
#include "player/framework/filter.h"
#include "player/layout.h"
#include "player/options.h"

namespace kest::player {

// What a filter is made from besides its own settings.
struct FilterMaterial {
  const PcmFormat &format;
  const Options &options;
  AudioReader &reader;  // Lpcm takes over its input's reader; the output copies the format
  uint32_t source;      // number of the input, from 1
};

// Throws PlayerError when the output file cannot be created.
std::unique_ptr<Filter> MakeFilter(const FilterLayout &layout, const FilterMaterial &material);

}  // namespace kest::player
