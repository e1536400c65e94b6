// SPDX-License-Identifier: Apache-2.0
// All checks of a channel.
#pragma once

#include <optional>

#include "ctl/audio/signal.h"
#include "ctl/audio/sine.h"

namespace kest::ctl {

struct ChannelReport {
  double peak = 0.0;  // relative to full scale
  double rms = 0.0;
  double offset = 0.0;
  std::optional<Sine> sine;
  Flaws flaws;  // in the order of time
};

// leastSnrDb: a tone with less is a flaw; none is when it is empty.
ChannelReport CheckChannel(const Signal &signal, std::optional<double> leastSnrDb);

}  // namespace kest::ctl
