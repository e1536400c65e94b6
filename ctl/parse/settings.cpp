// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/settings.h"

#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

bool ParseLevels(std::string_view line, ProcessSettings &settings) {
  Scanner scanner(line);
  return scanner.Text("DebugLevel:0x") && scanner.Number(settings.level, 16) && scanner.Text(",0x") &&
         scanner.Number(settings.sharedLevel, 16) && scanner.AtEnd();
}

bool ParsePresets(std::string_view line, ProcessSettings &settings) {
  Scanner scanner(line);
  if (!scanner.Text("DebugPresetCmd:")) return false;
  settings.presets = scanner.Rest();
  return true;
}

bool ParseFlags(std::string_view line, ProcessSettings &settings) {
  Scanner scanner(line);
  int own = 0;
  int shared = 0;
  const bool isWhole = scanner.Text("bDebugPresetCmd:") && scanner.Number(own) && scanner.Text(",") &&
                       scanner.Number(shared) && scanner.AtEnd();
  settings.presetOn = own != 0;
  settings.sharedPresetOn = shared != 0;
  return isWhole;
}

}  // namespace

std::optional<ProcessSettings> ParseSettings(const std::vector<std::string> &lines) {
  ProcessSettings settings;
  bool (*const steps[])(std::string_view, ProcessSettings &) = {ParseLevels, ParsePresets, ParseFlags};
  size_t done = 0;
  for (const std::string &line : lines) {
    ProcessSettings next = settings;
    if (done == std::size(steps) || !steps[done](line, next)) continue;
    settings = next;
    ++done;
  }
  if (done != std::size(steps)) return std::nullopt;
  return settings;
}

}  // namespace kest::ctl
