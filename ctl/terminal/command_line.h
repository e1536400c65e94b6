// SPDX-License-Identifier: Apache-2.0
// Turns the words of a command line into settings, a command and its arguments, by the table of commands.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "ctl/commands/command.h"
#include "ctl/commands/context.h"

namespace kest::ctl {

struct CommandLine {
  Settings settings;
  const Command *command = nullptr;
  Arguments arguments;
};

// What to print instead of running a command, as for --help.
struct Notice {
  std::string text;
};

// Throws CtlError for words that are not understood. settings is what holds without the options.
std::variant<CommandLine, Notice> ParseCommandLine(const std::vector<std::string> &words,
                                                   const Settings &settings);
// What the options that every command takes change of the settings.
void ApplyGlobalOptions(const Arguments &global, Settings &settings);

}  // namespace kest::ctl
