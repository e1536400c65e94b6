// SPDX-License-Identifier: Apache-2.0
// What runs at a moment: how full the ports are, what the threads cost, what went wrong since the last look.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ctl/model/process.h"

namespace kest::ctl {

enum class Mark {
  kRan,         // ended a turn while it was looked at
  kNotRun,      // did not, nor was it its turn
  kUnfinished,  // did not although it was its turn
  kUnknown      // another filter has the same names
};

struct LivePort {
  bool isInput = true;
  unsigned number = 0;
  uint64_t level = 0;  // of an input what its filter found, of an output what it left
  uint64_t size = 0;
  std::optional<uint64_t> xruns;  // empty when it was never told
  uint64_t newXruns = 0;          // since the last look

  [[nodiscard]] unsigned Percent() const {
    return size == 0 ? 0 : static_cast<unsigned>((level * 100 + size / 2) / size);
  }
};

struct LiveFilter {
  std::string name;
  Mark mark = Mark::kUnknown;
  std::vector<LivePort> ports;
};

struct LivePipeline {
  std::string name;
  std::string state;
  int tid = 0;
  std::optional<double> cpuPercent;
  std::vector<LiveFilter> filters;
};

struct LiveSample {
  Process process;
  std::optional<double> cpuPercent;  // of all threads
  std::vector<LivePipeline> pipelines;
  std::string problem;  // why nothing newer is known; empty when all is well
};

}  // namespace kest::ctl
