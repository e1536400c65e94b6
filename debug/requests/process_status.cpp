// SPDX-License-Identifier: Apache-2.0
#include "debug/requests/process_status.h"

#include "ze_kest/debug.h"

#include "debug/base/command_line.h"
#include "utility/core/report.h"
#include "utility/core/shared_name.h"

uint32_t u32KestQueryProcessStatus = ZE_KEST_TARGET_NONE;
char szKestQueryProcessStatusName1[ZE_KEST_NAME_SIZE] = "";
char szKestQueryProcessStatusName2[ZE_KEST_NAME_SIZE] = "";

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_QueryProcessStatus";

void ClearQuery() {
  ResetProcessStatusQuery();
  ClearName(szKestQueryProcessStatusName1);
  ClearName(szKestQueryProcessStatusName2);
}

// False, keeping the previous name, when no name is given. The same goes for TakeFilterName.
bool TakePipelineName(const char *pszName) {
  if (!TakeName(kFunction, szKestQueryProcessStatusName1, pszName)) return false;
  KEST_INFO_AS(kFunction, "[PROCESS_STATUS]Pipeline Name=%s\n",
               NameCopy(szKestQueryProcessStatusName1).c_str());
  return true;
}

bool TakeFilterName(const char *pszName) {
  if (!TakeName(kFunction, szKestQueryProcessStatusName2, pszName)) return false;
  KEST_INFO_AS(kFunction, "[PROCESS_STATUS]Filter Name=%s\n",
               NameCopy(szKestQueryProcessStatusName2).c_str());
  return true;
}

// Deliberate: the kind is set before the names are checked, so a line without names applies it to the old
// ones.
uint32_t QueryPipeline(const CommandLine &line) {
  KEST_INFO_AS(kFunction, "[PROCESS_STATUS]Target=%s\n", "pipeline");
  Store(u32KestQueryProcessStatus, uint32_t{ZE_KEST_TARGET_PIPELINE});
  return TakePipelineName(line.Rest()) ? ZE_KEST_OK : ZE_KEST_INVALID_ARGUMENT;
}

uint32_t QueryFilter(CommandLine &line) {
  KEST_INFO_AS(kFunction, "[PROCESS_STATUS]Target=%s\n", "filter");
  Store(u32KestQueryProcessStatus, uint32_t{ZE_KEST_TARGET_FILTER});
  const char *pszSub2 = line.Next(":");
  KEST_REQUIRE_AS(kFunction, pszSub2 != nullptr, "pszSub2 is NULL, format error\n");
  KEST_INFO_AS(kFunction, "pszSub3=%s,pszSub2=%s\n", Shown(line.Rest()), pszSub2);
  const bool bPipeline = TakePipelineName(pszSub2);
  const bool bFilter = TakeFilterName(line.Rest());
  return bPipeline || bFilter ? ZE_KEST_OK : ZE_KEST_INVALID_ARGUMENT;
}

uint32_t QueryNone() {
  KEST_INFO_AS(kFunction, "[PROCESS_STATUS]Target=%s\n", "none");
  ClearQuery();
  return ZE_KEST_OK;
}

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_QueryProcessStatus(const char *pszLine) {
  CommandLine line(pszLine);
  KEST_INFO("pszLine=%s\n", Shown(pszLine));
  const char *pszSub = line.Next("=");
  KEST_REQUIRE(pszSub != nullptr, "pszSub is NULL, format error\n");
  KEST_INFO("pszSub3=%s,pszSub=%s\n", Shown(line.Rest()), pszSub);
  if (ze_kest_Utility_Strcmp(pszSub, "kest_process_status") != 0) {
    ClearQuery();  // deliberate: any other command drops the query
    return ZE_KEST_INVALID_ARGUMENT;
  }

  const char *pszSub1 = line.Next(",");
  KEST_REQUIRE(pszSub1 != nullptr, "pszSub1 is NULL, format error\n");
  KEST_INFO("pszSub3=%s,pszSub1=%s\n", Shown(line.Rest()), pszSub1);
  KEST_INFO("[PROCESS_STATUS]Cmd=%s\n", pszSub1);
  if (ze_kest_Utility_Strcmp(pszSub1, "pipeline") == 0) return QueryPipeline(line);
  if (ze_kest_Utility_Strcmp(pszSub1, "filter") == 0) return QueryFilter(line);
  if (ze_kest_Utility_Strcmp(pszSub1, "none") == 0) return QueryNone();
  return ZE_KEST_INVALID_ARGUMENT;
}

void ResetProcessStatusQuery() {
  Store(u32KestQueryProcessStatus, uint32_t{ZE_KEST_TARGET_NONE});
}

}  // namespace kest
