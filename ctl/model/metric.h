// SPDX-License-Identifier: Apache-2.0
// Figures for a monitoring system, which compares them over time and over many devices.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kest::ctl {

struct MetricKind {
  enum class Type { kGauge, kCounter };

  const char *name;  // a counter's ends in _total
  Type type;
  const char *help;
};

struct MetricSample {
  std::vector<std::pair<std::string, std::string>> labels;
  double value = 0.0;
};

struct MetricFamily {
  MetricKind kind;
  std::vector<MetricSample> samples;  // no two have the same labels
};

}  // namespace kest::ctl
