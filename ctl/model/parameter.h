// SPDX-License-Identifier: Apache-2.0
// A parameter that filters of the process support.
#pragma once

#include <cstdint>
#include <string>

namespace kest::ctl {

struct Parameter {
  std::string name;
  std::string description;  // without the filter
  std::string filter;       // the filter that has it; empty when the host does not say
  uint64_t size = 0;        // of the value, in bytes
};

}  // namespace kest::ctl
