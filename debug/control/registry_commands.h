// SPDX-License-Identifier: Apache-2.0
// Actions of the commands on the registry.
#pragma once

#include "debug/control/command_table.h"

namespace kest {

uint32_t RegisterTestFilter(const CommandArguments &arguments);
uint32_t RemoveTestFilter(const CommandArguments &arguments);
uint32_t RemoveTestPipeline(const CommandArguments &arguments);
uint32_t ReleaseRegistry(const CommandArguments &arguments);
uint32_t ConnectTestPipelines(const CommandArguments &arguments);
uint32_t DisconnectTestPipelines(const CommandArguments &arguments);

uint32_t ListRegistry(const CommandArguments &arguments);
uint32_t ListStatus(const CommandArguments &arguments);
uint32_t ListParameters(const CommandArguments &arguments);

uint32_t SendCommandByIndex(const CommandArguments &arguments);
uint32_t SendCommandByText(const CommandArguments &arguments);

// Gets the whole line: it reports every line that reaches it.
uint32_t _ZE_KEST_Debug_Cmd_SetParameter(const CommandArguments &arguments);

}  // namespace kest
