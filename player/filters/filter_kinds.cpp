// SPDX-License-Identifier: Apache-2.0
#include "player/filters/filter_kinds.h"

#include <algorithm>

#include "player/filters/delay.h"
#include "player/filters/down_mix.h"
#include "player/filters/lpcm.h"
#include "player/filters/mixer.h"
#include "player/filters/speaker_output.h"
#include "player/filters/src.h"
#include "player/filters/volume.h"

namespace kest::player {

FilterKinds BuiltInKinds() {
  return {&Lpcm::kKind,    &Volume::kKind, &Delay::kKind,        &Src::kKind,
          &DownMix::kKind, &Mixer::kKind,  &SpeakerOutput::kKind};
}

const FilterKind *FindKind(const FilterKinds &kinds, std::string_view name) {
  const auto kind =
      std::find_if(kinds.begin(), kinds.end(), [&](const FilterKind *known) { return name == known->name; });
  return kind == kinds.end() ? nullptr : *kind;
}

}  // namespace kest::player
