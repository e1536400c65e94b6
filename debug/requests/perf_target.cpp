// SPDX-License-Identifier: Apache-2.0
#include "debug/requests/perf_target.h"

#include "ze_kest/debug.h"

#include "debug/base/command_line.h"
#include "utility/core/report.h"
#include "utility/core/shared_name.h"

uint32_t u32KestPerfEventTarget = ZE_KEST_TARGET_NONE;
char szKestPerfEventTargetName1[ZE_KEST_NAME_SIZE] = "";
char szKestPerfEventTargetName2[ZE_KEST_NAME_SIZE] = "";

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_SetPerfEventTarget";

void ClearTarget() {
  ResetPerfEventTarget();
  ClearName(szKestPerfEventTargetName1);
  ClearName(szKestPerfEventTargetName2);
}

// Both return false and keep the previous name when the command gives no name.
bool TakePipelineName(const char *pszName) {
  if (!TakeName(kFunction, szKestPerfEventTargetName1, pszName)) return false;
  KEST_INFO_AS(kFunction, "[PERF_EVENT]Pipeline Name=%s\n", NameCopy(szKestPerfEventTargetName1).c_str());
  return true;
}

bool TakeFilterName(const char *pszName) {
  if (!TakeName(kFunction, szKestPerfEventTargetName2, pszName)) return false;
  KEST_INFO_AS(kFunction, "[PERF_EVENT]Filter Name=%s\n", NameCopy(szKestPerfEventTargetName2).c_str());
  return true;
}

// Deliberate: the kind is set before the names are looked at, so a command without names combines it with the
// old ones.
uint32_t SelectPipeline(const CommandLine &line) {
  Store(u32KestPerfEventTarget, uint32_t{ZE_KEST_TARGET_PIPELINE});
  return TakePipelineName(line.Rest()) ? ZE_KEST_OK : ZE_KEST_INVALID_ARGUMENT;
}

uint32_t SelectFilter(CommandLine &line) {
  Store(u32KestPerfEventTarget, uint32_t{ZE_KEST_TARGET_FILTER});
  const char *pszSub2 = line.Next(":");
  KEST_REQUIRE_AS(kFunction, pszSub2 != nullptr, "pszSub2 is NULL, format error\n");
  const bool bPipeline = TakePipelineName(pszSub2);
  const bool bFilter = TakeFilterName(line.Rest());
  return bPipeline || bFilter ? ZE_KEST_OK : ZE_KEST_INVALID_ARGUMENT;
}

uint32_t SelectNone() {
  ClearTarget();
  return ZE_KEST_OK;
}

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_SetPerfEventTarget(const char *pszLine) {
  CommandLine line(pszLine);
  KEST_INFO("pszLine=%s\n", Shown(pszLine));
  const char *pszSub = line.Next("=");
  KEST_REQUIRE(pszSub != nullptr, "pszSub is NULL, format error\n");
  if (ze_kest_Utility_Strcmp(pszSub, "kest_perf_event_target") != 0) {
    ClearTarget();  // deliberate: any other command drops the target
    return ZE_KEST_INVALID_ARGUMENT;
  }

  const char *pszSub1 = line.Next(",");
  KEST_REQUIRE(pszSub1 != nullptr, "pszSub1 is NULL, format error\n");
  KEST_INFO("[PERF_EVENT]Cmd=%s\n", pszSub1);
  if (ze_kest_Utility_Strcmp(pszSub1, "pipeline") == 0) return SelectPipeline(line);
  if (ze_kest_Utility_Strcmp(pszSub1, "filter") == 0) return SelectFilter(line);
  if (ze_kest_Utility_Strcmp(pszSub1, "none") == 0) return SelectNone();
  return ZE_KEST_INVALID_ARGUMENT;
}

void ResetPerfEventTarget() {
  Store(u32KestPerfEventTarget, uint32_t{ZE_KEST_TARGET_NONE});
}

}  // namespace kest
