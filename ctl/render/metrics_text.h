// SPDX-License-Identifier: Apache-2.0
// Metrics in the two text formats of monitoring systems. Neither has time stamps: whoever collects knows
// when.
#pragma once

#include <string>
#include <vector>

#include "ctl/model/metric.h"

namespace kest::ctl {

// What a node exporter's text-file collector reads.
std::string ClassicText(const std::vector<MetricFamily> &families);
// What the OpenMetrics standard says: counters are named without _total in their description, and the text
// has an end mark.
std::string OpenMetricsText(const std::vector<MetricFamily> &families);

}  // namespace kest::ctl
