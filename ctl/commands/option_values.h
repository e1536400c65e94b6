// SPDX-License-Identifier: Apache-2.0
// Numbers behind options; empty when the option is not given. They throw CtlError when the text is no number,
// or beyond the range.
#pragma once

#include <chrono>
#include <limits>
#include <optional>
#include <string>

#include "ctl/commands/command.h"

namespace kest::ctl {

struct NumberRange {
  double least;
  double most;
};

constexpr double kMostWhole = std::numeric_limits<int>::max();

std::optional<double> RealOption(const Arguments &arguments, const std::string &name, NumberRange range);
std::optional<int> WholeOption(const Arguments &arguments, const std::string &name, NumberRange range);
// Seconds, which may have decimals: from a twentieth to a year.
std::optional<std::chrono::milliseconds> SecondsOption(const Arguments &arguments, const std::string &name);

}  // namespace kest::ctl
