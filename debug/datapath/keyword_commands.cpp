// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/keyword_commands.h"

#include "utility/core/missing_text.h"
#include "utility/core/report.h"

namespace kest {

uint32_t RunKeyword(const char *pszFunction, const CommandTable &commands, const char *pszLine) {
  CommandLine line(pszLine);
  KEST_INFO_AS(pszFunction, "%s pszDup=%s\n", pszFunction, Shown(pszLine));
  const char *pszSub = line.Next("=");
  KEST_REQUIRE_AS(pszFunction, pszSub != nullptr, "pszSub is NULL, format error\n");
  KEST_INFO_AS(pszFunction, "%s pszSub3=%s,pszSub=%s\n", pszFunction, Shown(line.Rest()), pszSub);
  return RunFirst(commands, pszFunction, pszSub, line);
}

const char *NextOfSeveral(const char *pszFunction, CommandLine &value) {
  const char *pszPart = value.Next(",");
  if (value.Rest() != nullptr) return pszPart;
  KEST_ERR_AS(pszFunction, "%s pszSub1 is NULL, format error\n", pszFunction);
  return nullptr;
}

}  // namespace kest
