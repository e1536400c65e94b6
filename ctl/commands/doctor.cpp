// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include <fmt/format.h>

#include "ctl/channel/surroundings.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/model/level.h"
#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

using Status = Finding::Status;

// What the answer to a harmless line says: that there is one, and what the log level hides.
std::vector<Finding> CheckAnswer(Channel &channel) {
  try {
    const ProcessSettings settings = channel.AskSettings();
    std::vector<Finding> findings = {
        {"answer", Status::kGood, fmt::format("answered in {:.2f} ms", channel.ElapsedMs()), {}}};
    const Level *level = FindLevel(settings.level);
    const std::string name = level == nullptr ? std::to_string(settings.level) : std::string(level->name);
    if (settings.level < kErrLevel) {
      findings.push_back(
          {"level", Status::kNote, fmt::format("the level {} hides refusals and errors", name),
           "kestctl set and cmd see refusals all the same; to see all errors: kestctl level err"});
    } else {
      findings.push_back(
          {"level", Status::kGood, fmt::format("the level {} shows refusals and errors", name), {}});
    }
    if (settings.level != settings.sharedLevel) {
      findings.push_back(
          {"shared_level", Status::kBad,
           fmt::format("the shared level {:#x} is not this process's, {:#x}", settings.sharedLevel,
                       settings.level),
           "processes that start later take over the shared one; set it again: kestctl level LEVEL"});
    }
    if (settings.presetOn || settings.sharedPresetOn) {
      findings.push_back(
          {"preset", Status::kNote, fmt::format("a preset command is on: {}", settings.presets),
           "every filter that registers gets it; kestctl send kest_debug_preset_cmd=off ends that"});
    }
    return findings;
  } catch (const CtlError &error) {
    if (error.Code() == ExitCode::kInterrupted) throw;
    return {{"answer", Status::kBad, error.what(), error.Hint()}};
  }
}

std::vector<Finding> Examine(Context &context) {
  const Surroundings around(context.GetHost(), context.GetSettings().directory);
  std::vector<Finding> findings;
  for (const auto check :
       {CheckDirectory, CheckPipe, CheckPermission, CheckReaders, CheckSingleReader, CheckStopped,
        CheckPipeLock, CheckUnread, CheckFileLogging, CheckLogFile, CheckDisk, CheckSharedBlock}) {
    findings.push_back(check(around));
  }
  const bool canAnswer = std::none_of(findings.begin(), findings.end(), [](const Finding &finding) {
    return finding.IsBad() && std::string_view(finding.id) != "shared_block";
  });
  if (!canAnswer) return findings;
  for (Finding &finding : CheckAnswer(context.GetChannel()))
    findings.push_back(std::move(finding));
  return findings;
}

const char *Mark(Status status) {
  switch (status) {
    case Status::kGood:
      return "ok";
    case Status::kNote:
      return "note";
    case Status::kBad:
      return "BAD";
    default:
      return "?";
  }
}

std::string Coloured(const char *mark, Status status, bool colour) {
  std::string padded = fmt::format("{:<4}", mark);
  if (!colour || status == Status::kGood) return padded;
  return fmt::format("\033[1;{}m{}\033[0m", status == Status::kBad ? 31 : 33, padded);
}

}  // namespace

Result RunDoctor(Context &context, const Arguments & /*arguments*/) {
  Result result;
  result.data["checks"] = Json::array();
  int bad = 0;
  for (const Finding &finding : Examine(context)) {
    result.data["checks"].push_back(ToJson(finding));
    result.text +=
        fmt::format("{} {:<14} {}\n", Coloured(Mark(finding.status), finding.status, context.UsesColour()),
                    finding.id, Escape(finding.found));
    if (!finding.remedy.empty()) result.text += fmt::format("{:20}-> {}\n", "", Escape(finding.remedy));
    bad += finding.IsBad() ? 1 : 0;
  }
  if (bad > 0) {
    result.exit = ExitCode::kRefused;
    result.message = bad == 1 ? "one check failed" : fmt::format("{} checks failed", bad);
  }
  return result;
}

}  // namespace kest::ctl
