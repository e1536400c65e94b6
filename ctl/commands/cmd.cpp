// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"
#include "ctl/commands/verdict_result.h"
#include "ctl/parse/lines.h"
#include "ctl/render/escape.h"

namespace kest::ctl {

Result RunCmd(Context &context, const Arguments &arguments) {
  const Target target = FindFilter(context.GetListing(), arguments.words[0]);
  const std::string text =
      fmt::format("{}", fmt::join(arguments.words.begin() + 1, arguments.words.end(), " "));
  const std::string name = FullName(target);
  RefuseCommas(target);
  if (!target.filter->takesCommands) {
    throw CtlError(ExitCode::kRefused, fmt::format("{} takes no commands", name));
  }
  const Verdict verdict = context.GetChannel().Change(
      fmt::format("kest_debug_send_cmd_by_text={},{},{}", target.pipeline->name, target.filter->name, text));
  Json asked = {{"pipeline", ToJson(target.pipeline->name)},
                {"filter", ToJson(target.filter->name)},
                {"text", ToJson(text)}};
  std::string shown;
  for (const std::string &line : verdict.lines)
    shown += Escape(line) + "\n";
  if (shown.empty()) shown = fmt::format("{} took \"{}\"\n", Escape(name), Escape(text));
  Result result =
      ResultOf(verdict, std::move(asked), shown, fmt::format("{} does not take \"{}\"", name, text));
  result.data["lines"] = ToJson(verdict.lines);
  return result;
}

}  // namespace kest::ctl
