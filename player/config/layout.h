// SPDX-License-Identifier: Apache-2.0
// What to play: the pipelines, their filters and the filters' settings.
#pragma once

#include <string>
#include <vector>

#include "player/config/options.h"
#include "player/filters/filter_kinds.h"
#include "player/framework/filter_layout.h"

namespace kest::player {

constexpr const char *kOutputPipeline = "SpeakerOutput";

struct PipelineLayout {
  std::string name;
  std::vector<FilterLayout> filters;  // in the order of the chain
};

// Each input begins with Lpcm and feeds the output, which begins with Mixer and ends with SpeakerOutput.
struct Layout {
  std::vector<PipelineLayout> inputs;  // 1 to ZE_KEST_MAX_PORTS
  PipelineLayout output;
};

// The layout from the configuration file, with filters of these kinds, or the default one with the files and
// settings of the command line. Throws PlayerError when the configuration is
// wrong or a module cannot be used.
Layout MakeLayout(const Options &options, const FilterKinds &kinds);

}  // namespace kest::player
