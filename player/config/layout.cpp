// SPDX-License-Identifier: Apache-2.0
#include "player/config/layout.h"

#include <algorithm>

#include "player/config/layout_reader.h"
#include "player/filters/delay.h"
#include "player/filters/down_mix.h"
#include "player/filters/lpcm.h"
#include "player/filters/mixer.h"
#include "player/filters/speaker_output.h"
#include "player/filters/src.h"
#include "player/filters/volume.h"
#include "player/modules/module_kinds.h"

namespace kest::player {
namespace {

constexpr size_t kFirstDecoder = 13;

// The filters of a pipeline need different names.
std::string FreeName(const std::vector<FilterLayout> &filters, const std::string &kind) {
  std::string name = kind;
  const auto isTaken = [&](const FilterLayout &filter) { return filter.name == name; };
  for (int number = 2; std::any_of(filters.begin(), filters.end(), isTaken); ++number) {
    name = kind + "_" + std::to_string(number);
  }
  return name;
}

std::vector<FilterLayout> Modules(const std::vector<ModuleOption> &modules, const FilterKinds &kinds) {
  std::vector<FilterLayout> filters;
  filters.reserve(modules.size());
  for (const ModuleOption &module : modules) {
    const FilterKind &kind = LoadKind(kinds, module.file, module.kind);
    filters.push_back({&kind, {}, FreeName(filters, kind.name), module.config, "", module.parameters});
  }
  return filters;
}

// The raw format is that of standard input.
FilterLayout InputLayout(const std::string &file, const std::optional<std::string> &raw) {
  FilterLayout lpcm{&Lpcm::kKind, {{Lpcm::kFileSetting, file}}};
  if (raw && StandardInput::IsMeantBy(file)) lpcm.settings[Lpcm::kRawSetting] = *raw;
  return lpcm;
}

Layout CommandLineLayout(const Options &options, const FilterKinds &kinds) {
  const FilterLayout volume{&Volume::kKind, {{Volume::kGainSetting, options.gainDb}}};
  const FilterLayout delay{&Delay::kKind, {{Delay::kDelaySetting, static_cast<int>(options.delayMs)}}};
  const FilterLayout output{&SpeakerOutput::kKind, {{SpeakerOutput::kFileSetting, options.output}}};
  const std::vector<FilterLayout> modules = Modules(options.modules, kinds);
  Layout layout;
  layout.output = {kOutputPipeline, {{&Mixer::kKind}}};
  if (options.mixMatrix)
    layout.output.filters.push_back({&DownMix::kKind, {{DownMix::kMatrixSetting, *options.mixMatrix}}});
  layout.output.filters.insert(layout.output.filters.end(), {delay, output});
  for (const std::string &input : options.inputs) {
    const std::string name = "Decoder_" + std::to_string(kFirstDecoder + layout.inputs.size());
    layout.inputs.push_back({name, {InputLayout(input, options.raw), volume}});
    if (options.rateHz)
      layout.inputs.back().filters.push_back({&Src::kKind, {{Src::kRateSetting, *options.rateHz}}});
    std::vector<FilterLayout> &chain = layout.inputs.back().filters;
    chain.insert(chain.end(), modules.begin(), modules.end());
  }
  return layout;
}

}  // namespace

Layout MakeLayout(const Options &options, const FilterKinds &kinds) {
  return options.config ? ReadLayout(*options.config, kinds) : CommandLineLayout(options, kinds);
}

}  // namespace kest::player
