// SPDX-License-Identifier: Apache-2.0
// Shared by handlers that serve several keywords.
#pragma once

#include "debug/base/command.h"

namespace kest {

// Splits the keyword off, reports both parts of the line and runs the first row that the line is for.
uint32_t RunKeyword(const char *pszFunction, const CommandTable &commands, const char *pszLine);

// The part before the next ",". NULL, after a report, when there is no ",".
const char *NextOfSeveral(const char *pszFunction, CommandLine &value);

}  // namespace kest
