// SPDX-License-Identifier: Apache-2.0
// The averages of a measured pipeline or filter, as the performance measurement prints them.
#pragma once

#include <cstdint>
#include <string>

namespace kest::ctl {

struct PerfLine {
  uint64_t cycles = 0;  // measured since the target was set
  std::string name;     // "PIPELINE" or "PIPELINE:FILTER"
  double mips = 0.0;
  double mcps = 0.0;
  double cpuPercent = 0.0;
};

}  // namespace kest::ctl
