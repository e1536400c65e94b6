// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "debug/control/command_table.h"

namespace kest {

// Prints the list of commands and the version.
uint32_t PrintHelp(const CommandArguments &arguments);

}  // namespace kest
