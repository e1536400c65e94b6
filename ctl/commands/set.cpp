// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <charconv>

#include <fmt/format.h>

#include "ctl/channel/marker.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"
#include "ctl/commands/verdict_result.h"
#include "ctl/parse/lines.h"
#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

int32_t ParseValue(const std::string &text) {
  int32_t value = 0;
  const char *end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc{} || stopped != end) {
    throw CtlError(ExitCode::kUsage, fmt::format("\"{}\" is no whole number of 32 bits", text));
  }
  return value;
}

// The filter that the process takes when it gets these beginnings of names: the first in its registry.
const Filter *FirstMatch(const Listing &listing, std::string_view pipelineStart,
                         std::string_view filterStart) {
  const Filter *first = nullptr;
  for (const Pipeline &pipeline : listing.pipelines) {
    if (!BeginsWith(pipeline.name, pipelineStart)) continue;
    for (const Filter &filter : pipeline.filters) {
      const bool isEarlier = first == nullptr || filter.index < first->index;
      if (BeginsWith(filter.name, filterStart) && isEarlier) first = &filter;
    }
  }
  return first;
}

void RefuseHidden(const Listing &listing, const Target &target) {
  const Filter *first = FirstMatch(listing, target.pipeline->name, target.filter->name);
  if (first == target.filter) return;
  throw CtlError(
      ExitCode::kNotFound,
      fmt::format(
          "{} cannot be named: its names are the beginning of those of filter {}, which the process takes "
          "instead",
          FullName(target), first->index));
}

std::string LineFor(std::string_view pipeline, std::string_view filter, const Parameter &parameter,
                    int32_t value) {
  return fmt::format("kest_debug_set_parameter={},{},{},{},{}", pipeline, filter, parameter.name, value,
                     parameter.size);
}

// The process compares beginnings only, so names of a line that is too long are shortened as far as they stay
// unique.
std::string MakeLine(const Listing &listing, const Target &target, const Parameter &parameter,
                     int32_t value) {
  std::string_view pipeline = target.pipeline->name;
  std::string_view filter = target.filter->name;
  std::string line = LineFor(pipeline, filter, parameter, value);
  while (line.size() > kLongestLine) {
    std::string_view &longer = pipeline.size() > filter.size() ? pipeline : filter;
    if (longer.empty()) break;
    longer.remove_suffix(1);
    if (FirstMatch(listing, pipeline, filter) != target.filter) break;
    line = LineFor(pipeline, filter, parameter, value);
  }
  return line;
}

}  // namespace

Result RunSet(Context &context, const Arguments &arguments) {
  const int32_t value = ParseValue(arguments.words[2]);
  const Listing &listing = context.GetListing();
  const Target target = FindFilter(listing, arguments.words[0]);
  RefuseCommas(target);
  RefuseHidden(listing, target);
  const Parameter &parameter =
      FindParameter(context.GetParameters(), target.filter->name, arguments.words[1]);
  const Verdict verdict = context.GetChannel().Change(MakeLine(listing, target, parameter, value));
  const std::string what = fmt::format("{} of {}", parameter.name, FullName(target));
  Json asked = {{"pipeline", ToJson(target.pipeline->name)},
                {"filter", ToJson(target.filter->name)},
                {"name", ToJson(parameter.name)},
                {"value", value}};
  return ResultOf(verdict, std::move(asked), fmt::format("{} is set to {}\n", Escape(what), value),
                  fmt::format("{} cannot be set to {}", what, value));
}

}  // namespace kest::ctl
