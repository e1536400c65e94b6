// SPDX-License-Identifier: Apache-2.0
#include "debug/base/command.h"

#include <cstring>

#include "ze_kest/result.h"

#include "utility/core/missing_text.h"
#include "utility/core/report.h"

namespace kest {
namespace {

bool TakesNoValue(const Command &command) {
  return command.pszValue != kAnyValue && *command.pszValue == '\0';
}

const char *ValueEnd(const Command &command) {
  return command.pstSplit == nullptr ? "" : command.pstSplit->pszValueEnd;
}

// Looks at the value without splitting it off, so that another row can still take it.
bool TakesValue(const Command &command, const char *pszText) {
  if (IsEmpty(pszText)) return false;
  const size_t sztValue = strcspn(pszText, ValueEnd(command));
  if (command.pszValue == kAnyValue) return sztValue != 0;
  return strlen(command.pszValue) == sztValue && strncmp(pszText, command.pszValue, sztValue) == 0;
}

}  // namespace

bool IsFor(const Command &command, const char *pszKeyword, const CommandLine &line) {
  if (command.pszKeyword != kEveryLine && ze_kest_Utility_Strcmp(pszKeyword, command.pszKeyword) != 0) {
    return false;
  }
  return TakesNoValue(command) || TakesValue(command, line.Rest());
}

uint32_t Run(const Command &command, const char *pszFunction, CommandLine &line) {
  const char *pszValue = TakesNoValue(command) ? nullptr : line.Next(ValueEnd(command));
  if (command.pszConfirmation != nullptr) KEST_PRINT_AS(pszFunction, "%s", command.pszConfirmation);
  return command.pfnAction({pszValue, line, command.u32Constant});
}

uint32_t RunFirst(const CommandTable &commands, const char *pszFunction, const char *pszKeyword,
                  CommandLine &line) {
  for (const Command &command : commands) {
    if (IsFor(command, pszKeyword, line)) return Run(command, pszFunction, line);
  }
  return ZE_KEST_INVALID_ARGUMENT;
}

uint32_t TakeAnyway(const CommandArguments & /*arguments*/) {
  return ZE_KEST_OK;
}

}  // namespace kest
