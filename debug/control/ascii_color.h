// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "debug/control/command_table.h"

namespace kest {

// Prints a sample of every terminal colour, at INFO level.
uint32_t PrintAsciiColors(const CommandArguments &arguments);

}  // namespace kest
