// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "debug/control/command_table.h"

namespace kest {

// Prints the JSON file that the value names, then its tokens one by one.
uint32_t PrintJsonFile(const CommandArguments &arguments);

}  // namespace kest
