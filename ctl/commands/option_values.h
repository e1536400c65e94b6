// SPDX-License-Identifier: Apache-2.0
// Numbers behind options. They throw CtlError when the text is none, or beyond the range.
#pragma once

#include <optional>
#include <string>

#include "ctl/commands/command.h"

namespace kest::ctl {

struct NumberRange {
  double least;
  double most;
};

std::optional<double> RealOption(const Arguments &arguments, const std::string &name, NumberRange range);
std::optional<int> WholeOption(const Arguments &arguments, const std::string &name, NumberRange range);

}  // namespace kest::ctl
