// SPDX-License-Identifier: Apache-2.0
// Compares a recording with what it should hold.
#pragma once

#include <vector>

#include "ctl/audio/signal.h"

namespace kest::ctl {

// What is wrong with a channel: "swapped" (value: the channel of the reference that it holds, from 1),
// "inverted", "missing" or "different" (value: the correlation). An empty kind: nothing.
struct ChannelVerdict {
  const char *kind = "";
  double value = 0.0;
  const char *unit = "";
};

// One verdict for each channel of the reference. The recording may begin anywhere in the reference and be
// louder or quieter.
std::vector<ChannelVerdict> CompareChannels(const std::vector<Signal> &recording,
                                            const std::vector<Signal> &reference);

}  // namespace kest::ctl
