// SPDX-License-Identifier: Apache-2.0
// Actions of the commands that control the log, plus atrace and the monitor's sleep time.
#pragma once

#include "debug/control/command_table.h"

namespace kest {

uint32_t RestartLog(const CommandArguments &arguments);
uint32_t SwitchLogToConsole(const CommandArguments &arguments);
uint32_t SwitchLogToFile(const CommandArguments &arguments);
uint32_t SetLogLevel(const CommandArguments &arguments);
uint32_t SetLogSize(const CommandArguments &arguments);
uint32_t SwitchAtrace(const CommandArguments &arguments);
uint32_t SetMonitorSleep(const CommandArguments &arguments);

}  // namespace kest
