// SPDX-License-Identifier: Apache-2.0
#include "player/config/layout.h"

#include "player/config/layout_reader.h"
#include "player/filters/delay.h"
#include "player/filters/down_mix.h"
#include "player/filters/lpcm.h"
#include "player/filters/mixer.h"
#include "player/filters/speaker_output.h"
#include "player/filters/src.h"
#include "player/filters/volume.h"

namespace kest::player {
namespace {

constexpr size_t kFirstDecoder = 13;

Layout CommandLineLayout(const Options &options) {
  const FilterLayout volume{&Volume::kKind, {{Volume::kGainSetting, options.gainDb}}};
  const FilterLayout delay{&Delay::kKind, {{Delay::kDelaySetting, static_cast<int>(options.delayMs)}}};
  const FilterLayout output{&SpeakerOutput::kKind, {{SpeakerOutput::kFileSetting, options.output}}};
  Layout layout;
  layout.output = {kOutputPipeline, {{&Mixer::kKind}}};
  if (options.mixMatrix)
    layout.output.filters.push_back({&DownMix::kKind, {{DownMix::kMatrixSetting, *options.mixMatrix}}});
  layout.output.filters.insert(layout.output.filters.end(), {delay, output});
  for (const std::string &input : options.inputs) {
    const std::string name = "Decoder_" + std::to_string(kFirstDecoder + layout.inputs.size());
    layout.inputs.push_back({name, {{&Lpcm::kKind, {{Lpcm::kFileSetting, input}}}, volume}});
    if (options.rateHz)
      layout.inputs.back().filters.push_back({&Src::kKind, {{Src::kRateSetting, *options.rateHz}}});
  }
  return layout;
}

}  // namespace

Layout MakeLayout(const Options &options, const FilterKinds &kinds) {
  return options.config ? ReadLayout(*options.config, kinds) : CommandLineLayout(options);
}

}  // namespace kest::player
