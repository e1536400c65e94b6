// SPDX-License-Identifier: Apache-2.0
// The lines of a measurement of the latency.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ctl/model/latency.h"

namespace kest::ctl {

// Adds what the line says to the report. Before the burst is inserted nothing else counts.
void TakeLatencyLine(std::string_view line, LatencyReport &report);
// The number of the measurement that begins, which is part of its files' names.
std::optional<unsigned> ParseLatencyRun(const std::vector<std::string> &lines);

}  // namespace kest::ctl
