// SPDX-License-Identifier: Apache-2.0
// Which filters ended a turn while their pipeline was looked at, and where those that did not are stuck.
#pragma once

#include <vector>

#include "ctl/model/listing.h"
#include "ctl/model/live.h"
#include "ctl/model/port_line.h"

namespace kest::ctl {

// A pipeline runs its filters in the order of the list. lines: the last line of each, NULL when none came.
// One for each filter.
std::vector<Mark> MarksOf(const Pipeline &pipeline, const std::vector<const PortLine *> &lines);

}  // namespace kest::ctl
