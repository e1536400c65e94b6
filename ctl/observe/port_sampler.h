// SPDX-License-Identifier: Apache-2.0
// Looks for a moment at what the filters' ports hold: the port lines are switched on until each filter has
// ended a turn, which is one cycle for those that run.
#pragma once

#include <chrono>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ctl/channel/channel.h"
#include "ctl/model/listing.h"
#include "ctl/model/port_line.h"

namespace kest::ctl {

constexpr const char *kPortLinesOn = "kest_print_filter_info=on";
constexpr const char *kPortLinesOff = "kest_print_filter_info=off";

using FilterKey = std::pair<std::string, std::string>;  // pipeline and filter

// The filters whose lines can be told from those of all others: no other one has the same names.
std::vector<FilterKey> DistinctFilters(const Listing &listing);

struct PortSample {
  std::vector<PortLine> all;            // PCM lines, of every turn that printed one
  std::map<FilterKey, PortLine> lines;  // the last of each filter
  bool isWhole = false;                 // each filter that was asked for has one
  bool isRead = true;                   // the process reads its commands
};

// Waits no longer than the window.
PortSample SamplePorts(Channel &channel, const std::vector<FilterKey> &filters,
                       std::chrono::milliseconds window);

}  // namespace kest::ctl
