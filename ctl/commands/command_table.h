// SPDX-License-Identifier: Apache-2.0
// All commands. Help, man page, completion and the shell are made from this table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ctl/commands/command.h"

namespace kest::ctl {

const std::vector<Command> &Commands();
const Command *FindCommand(std::string_view name);
// Throws CtlError with a suggestion when there is none of the name.
const Command &CommandNamed(const std::string &name);
// The options that every command takes.
const std::vector<OptionInfo> &GlobalOptions();

}  // namespace kest::ctl
