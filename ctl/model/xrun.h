// SPDX-License-Identifier: Apache-2.0
// An underrun or overrun of a port, and what is known of the filters around it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ctl/model/port_line.h"

namespace kest::ctl {

// A filter as it was at the end of its last turn before the event.
struct Neighbour {
  std::string pipeline;
  std::string filter;
  std::vector<PortState> ports;
  uint64_t agoUs = 0;
};

// The turn that took longest of those which the port had to wait for.
struct Blame {
  std::string pipeline;
  std::string filter;
  uint64_t turnUs = 0;
};

struct Xrun {
  uint64_t timeUs = 0;  // of the monotonic clock
  std::string pipeline;
  std::string filter;
  PortState port;
  uint64_t added = 0;  // of the port's xruns
  std::vector<Neighbour> before;
  std::vector<Neighbour> behind;
  std::optional<Blame> blame;
};

}  // namespace kest::ctl
