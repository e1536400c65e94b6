// SPDX-License-Identifier: Apache-2.0
// What a process answered to the lines that were sent to it.
#pragma once

#include <string>
#include <vector>

namespace kest::ctl {

struct Reply {
  // As logged, colours included; without the markers and the empty line with which the first command begins.
  std::vector<std::string> lines;
  double elapsedMs = 0.0;
  // Somebody had begun a line and not ended it; it was executed together with the first marker.
  bool strayLine = false;
};

}  // namespace kest::ctl
