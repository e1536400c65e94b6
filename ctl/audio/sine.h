// SPDX-License-Identifier: Apache-2.0
// What is known of a channel that holds a tone.
#pragma once

#include <optional>

#include "ctl/audio/signal.h"

namespace kest::ctl {

struct Sine {
  double hz = 0.0;
  double amplitude = 0.0;  // relative to full scale
  double snrDb = 0.0;      // of the tone to everything else
};

// Empty when the channel is no single tone for most of the time.
std::optional<Sine> FindSine(const Signal &signal);
// Where the tone's phase is another from one moment to the next. The value is in degrees, -180 to 180.
Flaws FindPhaseJumps(const Signal &signal, const Sine &sine);

}  // namespace kest::ctl
