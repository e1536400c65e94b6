// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/parameter_values.h"

#include <algorithm>

#include <fmt/format.h>

#include "ctl/parse/lines.h"
#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

bool IsNumber(std::string_view text) {
  double number = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc{} && end == text.data() + text.size();
}

// "read only" or "-144 to 53"
bool TakeRange(std::string_view text, ParameterValue &parameter) {
  if (text == "read only") return true;
  Scanner scanner(text);
  const auto least = scanner.UpTo(" to ");
  if (!least || !IsNumber(*least) || !IsNumber(scanner.Rest())) return false;
  parameter.range.emplace(*least, scanner.Rest());
  return true;
}

// "-6 dB (-144 to 53)"; the unit may hold anything, so the range is looked for from behind.
bool TakeValue(std::string_view text, ParameterValue &parameter) {
  const size_t open = text.rfind(" (");
  if (open == std::string_view::npos || text.back() != ')') return false;
  if (!TakeRange(text.substr(open + 2, text.size() - open - 3), parameter)) return false;
  const std::string_view shown = text.substr(0, open);
  const size_t end = std::min(shown.find(' '), shown.size());
  parameter.value = shown.substr(0, end);
  parameter.unit = Trim(shown.substr(end));
  return IsNumber(parameter.value);
}

}  // namespace

std::vector<ParameterValue> ParseParameterValues(const std::vector<std::string> &lines,
                                                 const std::string &pipeline, const std::string &filter) {
  std::vector<ParameterValue> values;
  const std::string beginning = fmt::format("{} {} ", pipeline, filter);
  for (const std::string &line : lines) {
    Scanner scanner(line);
    ParameterValue parameter = {pipeline, filter, "", "", "", std::nullopt};
    if (!scanner.Text(beginning)) continue;
    const auto name = scanner.UpTo(" = ");
    if (!name || !TakeValue(scanner.Rest(), parameter)) continue;
    parameter.name = *name;
    values.push_back(std::move(parameter));
  }
  return values;
}

}  // namespace kest::ctl
