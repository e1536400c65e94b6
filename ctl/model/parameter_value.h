// SPDX-License-Identifier: Apache-2.0
// What a filter says about one of its parameters.
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace kest::ctl {

struct ParameterValue {
  std::string pipeline;
  std::string filter;
  std::string name;
  std::string value;  // a number, with decimals where the parameter has them
  std::string unit;
  std::optional<std::pair<std::string, std::string>> range;  // least and most; empty: it can only be read
};

}  // namespace kest::ctl
