// SPDX-License-Identifier: Apache-2.0
// Help for people, made from the table of commands.
#pragma once

#include <string>

#include "ctl/commands/command.h"

namespace kest::ctl {

// "lines" of "-n,--lines": the name by which an option's value is kept.
std::string LongName(const OptionInfo &option);
// "-n, --lines N"
std::string ShowOption(const OptionInfo &option);
// "set PIPELINE/FILTER NAME VALUE"
std::string Synopsis(const Command &command);

std::string HelpText();
std::string HelpText(const Command &command);
// The manual page, in the roff macros of man.
std::string ManPage();

struct ExitCodeInfo {
  ExitCode code;
  const char *meaning;
};

extern const std::vector<ExitCodeInfo> kExitCodes;

}  // namespace kest::ctl
