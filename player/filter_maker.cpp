// SPDX-License-Identifier: Apache-2.0
#include "player/filter_maker.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "player/filters/delay.h"
#include "player/filters/lpcm.h"
#include "player/filters/mixer.h"
#include "player/filters/speaker_output.h"
#include "player/filters/volume.h"

namespace kest::player {
namespace {

using OwnedFilter = std::unique_ptr<Filter>;

OwnedFilter MakeLpcm(const FilterLayout & /*layout*/, const FilterMaterial &material) {
  return std::make_unique<Lpcm>(material.format, std::move(material.reader), material.source,
                                material.options.loop);
}

OwnedFilter MakeVolume(const FilterLayout &layout, const FilterMaterial &material) {
  auto volume = std::make_unique<Volume>(material.format);
  volume->SetGainDb(layout.gainDb);
  return volume;
}

OwnedFilter MakeDelay(const FilterLayout &layout, const FilterMaterial &material) {
  auto delay = std::make_unique<Delay>(material.format);
  delay->SetDelayMs(static_cast<uint32_t>(layout.delayMs));
  return delay;
}

OwnedFilter MakeMixer(const FilterLayout & /*layout*/, const FilterMaterial &material) {
  return std::make_unique<Mixer>(material.format);
}

uint64_t FrameLimit(const Options &options, uint32_t sampleRate) {
  if (!options.seconds) return SpeakerOutput::kNoLimit;
  return static_cast<uint64_t>(std::round(*options.seconds * sampleRate));
}

OwnedFilter MakeSpeakerOutput(const FilterLayout &layout, const FilterMaterial &material) {
  return std::make_unique<SpeakerOutput>(material.format, AudioWriter(layout.file, material.reader),
                                         FrameLimit(material.options, material.format.sampleRate),
                                         !material.options.fast);
}

struct Maker {
  const FilterKind *kind;
  OwnedFilter (*make)(const FilterLayout &layout, const FilterMaterial &material);
};

constexpr Maker kMakers[] = {{&Lpcm::kKind, MakeLpcm},
                             {&Volume::kKind, MakeVolume},
                             {&Delay::kKind, MakeDelay},
                             {&Mixer::kKind, MakeMixer},
                             {&SpeakerOutput::kKind, MakeSpeakerOutput}};

}  // namespace

OwnedFilter MakeFilter(const FilterLayout &layout, const FilterMaterial &material) {
  const auto *maker = std::find_if(std::begin(kMakers), std::end(kMakers),
                                   [&](const Maker &candidate) { return candidate.kind == layout.kind; });
  return maker->make(layout, material);
}

}  // namespace kest::player
