// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/durations.h"

#include <charconv>
#include <limits>

#include <fmt/format.h>

namespace kest::ctl {
namespace {

constexpr double kShortestSeconds = 0.05;
constexpr double kLongestSeconds = 24.0 * 3600 * 365;

// The whole text as a number; empty when it is none.
template <typename Number>
std::optional<Number> WholeNumber(const std::string &text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace

std::chrono::milliseconds SecondsOf(const Arguments &arguments, const char *option,
                                    std::chrono::milliseconds otherwise) {
  const auto text = arguments.Option(option);
  if (!text) return otherwise;
  const auto seconds = WholeNumber<double>(*text);
  if (!seconds || !(*seconds >= kShortestSeconds && *seconds <= kLongestSeconds)) {
    throw CtlError(ExitCode::kUsage, fmt::format("--{}: \"{}\" is no number of seconds", option, *text),
                   fmt::format("{} at least, such as 0.5 or 10", kShortestSeconds));
  }
  return std::chrono::milliseconds(static_cast<int64_t>(*seconds * 1000.0));
}

int64_t CountOf(const Arguments &arguments, const char *option, int64_t least, int64_t otherwise) {
  const auto text = arguments.Option(option);
  if (!text) return otherwise;
  const auto number = WholeNumber<int64_t>(*text);
  if (!number || *number < least) {
    throw CtlError(ExitCode::kUsage,
                   fmt::format("--{}: \"{}\" is no whole number from {} on", option, *text, least));
  }
  return *number;
}

}  // namespace kest::ctl
