// SPDX-License-Identifier: Apache-2.0
// Timing traces in the trace-event format that the viewers of browsers open: a thread for each pipeline, a
// slice for each cycle and in it one for each filter's turn, a counter for each port's level.
#pragma once

#include <string>

#include "ctl/model/trace.h"

namespace kest::ctl {

// Lists events in the order of their times, those that hold others first.
std::string TraceJson(const TraceDocument &document);

}  // namespace kest::ctl
