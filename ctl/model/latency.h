// SPDX-License-Identifier: Apache-2.0
// What a process says of a measurement of the latency.
#pragma once

#include <cstdint>
#include <optional>

namespace kest::ctl {

// Where the end filter's output lies in the ring in a cycle in which the burst is looked for: addresses.
struct SearchedCycle {
  uint64_t start = 0;  // of the cycle's first sample
  uint64_t ringStart = 0;
  uint64_t ringEnd = 0;
};

struct LatencyReport {
  bool isInserted = false;
  SearchedCycle cycle;  // the last one
  unsigned rate = 0;
  unsigned bits = 0;
  uint64_t hitAddress = 0;
  uint64_t hitOffset = 0;  // bytes of the cycle before the hit
  std::optional<uint64_t> totalBytes;
  std::optional<uint64_t> processingUs;

  [[nodiscard]] bool IsWhole() const { return totalBytes && processingUs; }
};

}  // namespace kest::ctl
