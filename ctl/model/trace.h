// SPDX-License-Identifier: Apache-2.0
// The cycles of a pipeline as the timing trace wrote them. Times are in microseconds of the monotonic clock.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ctl/model/port_line.h"

namespace kest::ctl {

struct FilterTurn {
  std::string filter;
  uint64_t startUs = 0;
  uint64_t endUs = 0;
  bool isRepaired = false;  // the start was that of another pipeline's filter
};

struct Cycle {
  uint64_t startUs = 0;
  uint64_t endUs = 0;
  std::vector<FilterTurn> turns;  // one after the other, within the cycle
  bool hasPrinted = false;        // port lines, for which it took longer
};

struct PipelineTrace {
  std::string pipeline;  // empty without a whole cycle
  std::vector<Cycle> cycles;
  size_t repaired = 0;  // turns
  size_t dropped = 0;   // lines that belong to no whole cycle, and turns that make no sense
};

struct TraceTrack {
  PipelineTrace trace;
  int tid = 0;
  std::vector<std::string> feeds;  // pipelines
};

struct TraceDocument {
  std::string process;
  int pid = 0;
  std::vector<TraceTrack> tracks;
  std::vector<PortLine> portLines;
};

}  // namespace kest::ctl
