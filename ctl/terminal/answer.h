// SPDX-License-Identifier: Apache-2.0
// Prints what a command gave, for people or as one JSON document.
#pragma once

#include <string>

#include "ctl/commands/command.h"
#include "ctl/commands/context.h"

namespace kest::ctl {

// Returns the exit code.
int PrintResult(Context &context, const Command &command, const Result &result);
// context and command are NULL when the failure came before them.
int PrintFailure(Context *context, const Command *command, const CtlError &error, const Settings &settings);

}  // namespace kest::ctl
