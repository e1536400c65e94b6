// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <charconv>

#include <fmt/format.h>

#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"
#include "ctl/parse/parameter_values.h"
#include "ctl/render/table.h"

namespace kest::ctl {
namespace {

bool HasParameters(Context &context, const Filter &filter) {
  const std::vector<Parameter> &known = context.GetParameters();
  return std::any_of(known.begin(), known.end(),
                     [&](const Parameter &parameter) { return parameter.filter == filter.name; });
}

// The filter that is named; else those that have parameters, as far as the process says whose they are: a
// filter that does not take the command would be reported.
std::vector<Target> FiltersToAsk(Context &context, const Arguments &arguments) {
  const Listing &listing = context.GetListing();
  const Target named = arguments.words.empty() ? Target{} : FindTarget(listing, arguments.words[0]);
  std::vector<Target> targets;
  for (const Pipeline &pipeline : listing.pipelines) {
    if (named.pipeline != nullptr && named.pipeline != &pipeline) continue;
    for (const Filter &filter : pipeline.filters) {
      const bool isMeant = named.filter != nullptr ? named.filter == &filter : HasParameters(context, filter);
      if (isMeant && filter.takesCommands) targets.push_back({&pipeline, &filter});
    }
  }
  return targets;
}

Json NumberOf(const std::string &text) {
  double number = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return text.find('.') == std::string::npos ? Json(static_cast<int64_t>(number)) : Json(number);
}

Json ToJson(const ParameterValue &parameter) {
  return {{"pipeline", ctl::ToJson(parameter.pipeline)},
          {"filter", ctl::ToJson(parameter.filter)},
          {"name", ctl::ToJson(parameter.name)},
          {"value", NumberOf(parameter.value)},
          {"unit", ctl::ToJson(parameter.unit)},
          {"least", parameter.range ? NumberOf(parameter.range->first) : Json()},
          {"most", parameter.range ? NumberOf(parameter.range->second) : Json()}};
}

std::string RangeOf(const ParameterValue &parameter) {
  if (!parameter.range) return "read only";
  return fmt::format("{} to {}", parameter.range->first, parameter.range->second);
}

std::vector<ParameterValue> AskValues(Context &context, const Target &target) {
  const Lines lines =
      context.GetChannel().Ask({fmt::format("kest_debug_send_cmd={},get", target.filter->index)}).lines;
  return ParseParameterValues(lines, target.pipeline->name, target.filter->name);
}

}  // namespace

Result RunGet(Context &context, const Arguments &arguments) {
  Table table(
      {{"PIPELINE"}, {"FILTER"}, {"PARAMETER"}, {"VALUE", Table::Align::kRight}, {"UNIT"}, {"RANGE"}});
  Result result;
  result.data["parameters"] = Json::array();
  for (const Target &target : FiltersToAsk(context, arguments)) {
    for (const ParameterValue &parameter : AskValues(context, target)) {
      result.data["parameters"].push_back(ToJson(parameter));
      table.Add({parameter.pipeline, parameter.filter, parameter.name, parameter.value, parameter.unit,
                 RangeOf(parameter)});
    }
  }
  result.text = table.IsEmpty() ? "no filter reads its parameters back\n" : table.Text();
  return result;
}

}  // namespace kest::ctl
