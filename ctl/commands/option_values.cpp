// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/option_values.h"

#include <charconv>
#include <cmath>

#include <fmt/format.h>

namespace kest::ctl {
namespace {

constexpr NumberRange kSeconds = {0.05, 365.0 * 24 * 3600};

}  // namespace

std::optional<double> RealOption(const Arguments &arguments, const std::string &name, NumberRange range) {
  const auto text = arguments.Option(name);
  if (!text) return std::nullopt;
  double number = 0.0;
  const char *end = text->data() + text->size();
  const auto [stopped, error] = std::from_chars(text->data(), end, number);
  if (error == std::errc{} && stopped == end && number >= range.least && number <= range.most) return number;
  throw CtlError(ExitCode::kUsage, fmt::format("--{}: \"{}\" is no number from {} to {}", name, *text,
                                               range.least, range.most));
}

std::optional<int> WholeOption(const Arguments &arguments, const std::string &name, NumberRange range) {
  const auto number = RealOption(arguments, name, range);
  if (!number) return std::nullopt;
  if (*number == std::floor(*number)) return static_cast<int>(*number);
  throw CtlError(ExitCode::kUsage, fmt::format("--{}: {} is no whole number", name, *number));
}

std::optional<std::chrono::milliseconds> SecondsOption(const Arguments &arguments, const std::string &name) {
  const auto seconds = RealOption(arguments, name, kSeconds);
  if (!seconds) return std::nullopt;
  return std::chrono::milliseconds(static_cast<int64_t>(*seconds * 1000.0));
}

}  // namespace kest::ctl
