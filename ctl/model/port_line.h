// SPDX-License-Identifier: Apache-2.0
// What a filter's ports held when a turn of it ended, as kest_print_filter_info=on makes it print.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kest::ctl {

// Sizes are samples per channel on PCM lines, bytes on others.
struct PortState {
  bool isInput = true;
  unsigned number = 0;
  uint64_t updates = 0;
  uint64_t xruns = 0;  // underruns of an input, overruns of an output
  uint64_t level = 0;  // before this turn's reads and writes are accounted for
  uint64_t size = 0;
  uint64_t moved = 0;  // read or written in this turn

  [[nodiscard]] bool IsSamePort(const PortState &other) const {
    return isInput == other.isInput && number == other.number;
  }
};

struct PortLine {
  enum class Kind { kPcm, kMetadata, kRaw };
  Kind kind = Kind::kPcm;
  uint64_t timeUs = 0;  // of the monotonic clock, as in the timing trace
  std::string pipeline;
  std::string filter;
  std::vector<PortState> ports;  // fewer than there are when the line was cut
};

}  // namespace kest::ctl
