// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/parameters.h"

#include <optional>

#include "ctl/parse/lines.h"
#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

// A host may begin the description with the filter's name: "Volume: dB".
void SplitDescription(std::string_view text, Parameter &parameter) {
  const size_t colon = text.find(": ");
  const bool hasFilter =
      colon != std::string_view::npos && text.substr(0, colon).find(' ') == std::string_view::npos;
  if (hasFilter) parameter.filter = text.substr(0, colon);
  parameter.description = hasFilter ? text.substr(colon + 2) : text;
}

std::optional<Parameter> ParseParameter(std::string_view line) {
  Scanner scanner(line);
  Parameter parameter;
  if (!scanner.Text("'")) return std::nullopt;
  const auto name = scanner.UpTo("', '");
  if (!name) return std::nullopt;
  // The description may hold anything, so its end is looked for from behind.
  const std::string_view rest = scanner.Rest();
  const size_t end = rest.rfind("', '");
  if (end == std::string_view::npos) return std::nullopt;
  Scanner size(rest.substr(end + 4));
  if (!size.Number(parameter.size) || !size.Text("'") || !size.AtEnd()) return std::nullopt;
  parameter.name = *name;
  SplitDescription(rest.substr(0, end), parameter);
  return parameter;
}

}  // namespace

std::vector<Parameter> ParseParameters(const std::vector<std::string> &lines) {
  std::vector<Parameter> parameters;
  for (const std::string &line : lines) {
    if (auto parameter = ParseParameter(line)) parameters.push_back(*std::move(parameter));
  }
  return parameters;
}

}  // namespace kest::ctl
