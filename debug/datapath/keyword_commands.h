// SPDX-License-Identifier: Apache-2.0
// Shared by handlers that serve several keywords: splits a line and reports its parts.
#pragma once

#include "debug/base/command_line.h"
#include "utility/core/report.h"

namespace kest {

struct KeywordCommand {
  const char *pszKeyword;
  // value: the text after the "=". ZE_KEST_OK: the line is taken.
  uint32_t (*pfnAction)(CommandLine &value);
};

// Runs the row with the keyword of the line. ZE_KEST_INVALID_ARGUMENT when there is no such row.
template <size_t kCount>
uint32_t RunKeyword(const char *pszFunction, const KeywordCommand (&aCommands)[kCount], const char *pszLine) {
  CommandLine line(pszLine);
  KEST_INFO_AS(pszFunction, "%s pszDup=%s\n", pszFunction, Shown(pszLine));
  const char *pszSub = line.Next("=");
  KEST_REQUIRE_AS(pszFunction, pszSub != nullptr, "pszSub is NULL, format error\n");
  KEST_INFO_AS(pszFunction, "%s pszSub3=%s,pszSub=%s\n", pszFunction, Shown(line.Rest()), pszSub);
  for (const KeywordCommand &command : aCommands) {
    if (ze_kest_Utility_Strcmp(pszSub, command.pszKeyword) == 0) return command.pfnAction(line);
  }
  return ZE_KEST_INVALID_ARGUMENT;
}

// The part before the next ",". NULL, after a report, when there is no ",".
inline const char *NextOfSeveral(const char *pszFunction, CommandLine &value) {
  const char *pszPart = value.Next(",");
  if (value.Rest() != nullptr) return pszPart;
  KEST_ERR_AS(pszFunction, "%s pszSub1 is NULL, format error\n", pszFunction);
  return nullptr;
}

// For an on/off switch: any other value changes nothing, and the line counts as taken all the same.
template <typename On, typename Off>
uint32_t Switch(const CommandLine &value, On &&on, Off &&off) {
  if (ze_kest_Utility_Strcmp(value.Rest(), "on") == 0) on();
  if (ze_kest_Utility_Strcmp(value.Rest(), "off") == 0) off();
  return ZE_KEST_OK;
}

}  // namespace kest
