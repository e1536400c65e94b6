// SPDX-License-Identifier: Apache-2.0
// What was parsed, as metrics.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ctl/model/listing.h"
#include "ctl/model/metric.h"
#include "ctl/model/status.h"

namespace kest::ctl {

// What one process answered.
struct ProcessFigures {
  Listing listing;
  StatusReport status;
  uint32_t logLevel = 0;
  double answerSeconds = 0.0;
};

struct Figures {
  size_t processes = 0;                  // that read the pipe
  std::optional<uint64_t> logBytes;      // empty when there is no log
  std::optional<ProcessFigures> inside;  // empty when nothing answers
};

// The same families whatever runs, those without a sample left out. device becomes a label of every sample
// unless it is empty.
std::vector<MetricFamily> MetricsOf(const Figures &figures, const std::string &device);

}  // namespace kest::ctl
