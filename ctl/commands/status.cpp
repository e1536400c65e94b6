// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"
#include "ctl/render/table.h"

namespace kest::ctl {
namespace {

void KeepOnly(const Target &target, std::vector<FilterStatus> &filters) {
  const auto isOther = [&](const FilterStatus &filter) {
    return filter.pipeline != target.pipeline->name ||
           (target.filter != nullptr && filter.name != target.filter->name);
  };
  filters.erase(std::remove_if(filters.begin(), filters.end(), isOther), filters.end());
}

// "Gain -6, Mute 0"; of kinds that are not known, what they print.
std::string ShowValues(const FilterStatus &filter) {
  if (filter.values.empty()) return fmt::format("{}", fmt::join(filter.text, " "));
  std::vector<std::string> values;
  for (const auto &[name, value] : filter.values)
    values.push_back(fmt::format("{} {}", name, value));
  return fmt::format("{}", fmt::join(values, ", "));
}

std::string ShowSink(const StatusReport &report) {
  std::vector<std::string> formats;
  for (const auto &[name, value] : report.sink) {
    if (value != 0) formats.push_back(name);
  }
  return fmt::format("The sink takes compressed: {}\n",
                     formats.empty() ? "nothing" : fmt::format("{}", fmt::join(formats, ", ")));
}

}  // namespace

Result RunStatus(Context &context, const Arguments &arguments) {
  StatusReport report = context.AskStatus();
  if (!arguments.words.empty())
    KeepOnly(FindTarget(context.GetListing(), arguments.words[0]), report.filters);
  Table table({{"PIPELINE"}, {"FILTER"}, {"REPORTS"}});
  for (const FilterStatus &filter : report.filters)
    table.Add({filter.pipeline, filter.name, ShowValues(filter)});
  Result result;
  result.data = ToJson(report);
  result.text = table.IsEmpty() ? "no filter is registered\n" : table.Text();
  if (arguments.words.empty()) result.text += ShowSink(report);
  return result;
}

}  // namespace kest::ctl
