// SPDX-License-Identifier: Apache-2.0
#include "ctl/model/level.h"

#include <algorithm>

#include <fmt/format.h>

#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"

namespace kest::ctl {
namespace {

std::string NameOf(uint32_t number) {
  const Level *level = FindLevel(number);
  return level == nullptr ? fmt::format("{}", number) : std::string(level->name);
}

const Level &LevelNamed(const std::string &name) {
  const Level *level = FindLevel(name);
  if (level != nullptr) return *level;
  std::vector<std::string> names;
  names.reserve(std::size(kLevels));
  for (const Level &known : kLevels)
    names.emplace_back(known.name);
  const std::string nearest = Nearest(names, name);
  throw CtlError(ExitCode::kUsage, fmt::format("there is no level \"{}\"", name),
                 nearest.empty() ? "there are none, err, sync, hdmi, wrn, info, trace and all"
                                 : fmt::format("did you mean {}?", nearest));
}

void SetLevel(Context &context, const Level &level) {
  const std::string line = fmt::format("kest_log_level={}", level.name);
  const Reply reply = context.GetChannel().Send({line});
  if (std::find(reply.lines.begin(), reply.lines.end(), line) == reply.lines.end()) {
    throw CtlError(ExitCode::kLost, "the process did not confirm the level");
  }
}

}  // namespace

Result RunLevel(Context &context, const Arguments &arguments) {
  if (!arguments.words.empty()) SetLevel(context, LevelNamed(arguments.words[0]));
  const ProcessSettings settings = context.GetChannel().AskSettings();
  Result result;
  result.data = {{"level", NameOf(settings.level)},
                 {"number", settings.level},
                 {"shared_level", NameOf(settings.sharedLevel)},
                 {"shared_number", settings.sharedLevel}};
  result.text = NameOf(settings.level) + "\n";
  if (settings.level != settings.sharedLevel) {
    context.GetChannel().Warn(
        fmt::format("processes that start later take over another level, {}", NameOf(settings.sharedLevel)));
  }
  return result;
}

}  // namespace kest::ctl
