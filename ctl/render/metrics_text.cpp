// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/metrics_text.h"

#include <string_view>

#include <fmt/format.h>

#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

constexpr std::string_view kCounterEnd = "_total";

std::string Quoted(const std::string &text) {
  std::string quoted = "\"";
  for (const char character : ToUtf8(text)) {
    if (character == '\n') {
      quoted += "\\n";
      continue;
    }
    if (character == '"' || character == '\\') quoted += '\\';
    quoted += character;
  }
  return quoted + "\"";
}

std::string Labels(const MetricSample &sample) {
  std::string text;
  for (const auto &[name, value] : sample.labels)
    text += fmt::format("{}{}={}", text.empty() ? "" : ",", name, Quoted(value));
  return text.empty() ? "" : "{" + text + "}";
}

std::string FamilyText(const MetricFamily &family, std::string_view name) {
  const bool isCounter = family.kind.type == MetricKind::Type::kCounter;
  std::string text = fmt::format("# HELP {0} {1}\n# TYPE {0} {2}\n", name, family.kind.help,
                                 isCounter ? "counter" : "gauge");
  for (const MetricSample &sample : family.samples)
    text += fmt::format("{}{} {}\n", family.kind.name, Labels(sample), sample.value);
  return text;
}

std::string_view WithoutCounterEnd(std::string_view name) {
  const bool isCounter =
      name.size() > kCounterEnd.size() && name.substr(name.size() - kCounterEnd.size()) == kCounterEnd;
  return isCounter ? name.substr(0, name.size() - kCounterEnd.size()) : name;
}

}  // namespace

std::string ClassicText(const std::vector<MetricFamily> &families) {
  std::string text;
  for (const MetricFamily &family : families)
    text += FamilyText(family, family.kind.name);
  return text;
}

std::string OpenMetricsText(const std::vector<MetricFamily> &families) {
  std::string text;
  for (const MetricFamily &family : families)
    text += FamilyText(family, WithoutCounterEnd(family.kind.name));
  return text + "# EOF\n";
}

}  // namespace kest::ctl
