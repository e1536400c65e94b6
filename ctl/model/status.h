// SPDX-License-Identifier: Apache-2.0
// What filters report about themselves.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kest::ctl {

struct FilterStatus {
  std::string pipeline;
  std::string name;
  std::vector<std::pair<std::string, int64_t>> values;  // in the order of the report
  std::vector<std::string> text;                        // the report as printed
};

struct StatusReport {
  std::vector<FilterStatus> filters;
  std::vector<std::pair<std::string, int64_t>> sink;  // formats that the sink takes
};

}  // namespace kest::ctl
