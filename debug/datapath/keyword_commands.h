// SPDX-License-Identifier: Apache-2.0
// Handlers that serve several keywords: how they take a line apart, and what they report of it.
#pragma once

#include "utility/core/command_line.h"
#include "utility/core/report.h"

namespace kest {

struct KeywordCommand {
  const char *pszKeyword;
  // value: what stands behind the "=". ZE_KEST_OK: the line is taken.
  uint32_t (*pfnAction)(CommandLine &value);
};

// Carries out the row of the line's keyword. ZE_KEST_INVALID_ARGUMENT for a keyword without a row.
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

// The part before the next ",", which has to be there: without one it is reported and NULL.
inline const char *NextOfSeveral(const char *pszFunction, CommandLine &value) {
  const char *pszPart = value.Next(",");
  if (value.Rest() != nullptr) return pszPart;
  KEST_ERR_AS(pszFunction, "%s pszSub1 is NULL, format error\n", pszFunction);
  return nullptr;
}

// For a switch: any value but "on" and "off" changes nothing and is taken all the same.
template <typename On, typename Off>
uint32_t Switch(const CommandLine &value, On &&on, Off &&off) {
  if (ze_kest_Utility_Strcmp(value.Rest(), "on") == 0) on();
  if (ze_kest_Utility_Strcmp(value.Rest(), "off") == 0) off();
  return ZE_KEST_OK;
}

}  // namespace kest
