// SPDX-License-Identifier: Apache-2.0
// When the burst of a measurement came out, to the sample.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "ctl/model/latency.h"

namespace kest::ctl {

// What the end filter wrote, and its part from the hit to the end of the cycle: words of 32 bits,
// little-endian.
struct BurstRecording {
  std::string_view all;
  std::string_view fromHit;
};

// How many samples came out between the insertion and the burst's first sample. hasWordBehindRing: whether
// the storage goes on behind the ring that was searched. Empty when the recording does not show silence and
// then the burst.
std::optional<int64_t> ExactSamples(const LatencyReport &report, const BurstRecording &recording,
                                    bool hasWordBehindRing);

}  // namespace kest::ctl
