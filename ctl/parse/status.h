// SPDX-License-Identifier: Apache-2.0
// The answer to kest_debug_list=status.
#pragma once

#include <string>
#include <vector>

#include "ctl/model/status.h"

namespace kest::ctl {

struct ParsedStatus {
  StatusReport report;
  bool isWhole = false;
  std::vector<std::string> unknown;  // lines that are not part of it
};

ParsedStatus ParseStatus(const std::vector<std::string> &lines);

}  // namespace kest::ctl
