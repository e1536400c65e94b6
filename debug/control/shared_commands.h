// SPDX-License-Identifier: Apache-2.0
// Actions of the commands on the settings that the processes share.
#pragma once

#include "debug/control/command_table.h"

namespace kest {

uint32_t PrintCurrentShm(const CommandArguments &arguments);
uint32_t PresetForAll(const CommandArguments &arguments);
uint32_t PresetOff(const CommandArguments &arguments);

}  // namespace kest
