// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/parameters.h"

#include <cstring>

#include "ze_kest/debug.h"

#include "debug/base/debug_mutex.h"
#include "debug/base/started.h"
#include "debug/registry/registry.h"
#include "utility/core/begins_with.h"
#include "utility/core/report.h"

namespace kest {
namespace {

const ZE_KEST_SupportedParameter_s *_pstKestSupportedParameterList = nullptr;

ZE_KEST_Filter_s *FindFilter(const char *pszPipelineName, const char *pszFilterName)
    KEST_REQUIRES_LOCK(kDebugLock) {
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    if (info.pstFilter == nullptr || !BeginsWith(info.szName, pszPipelineName)) continue;
    if (BeginsWith(info.pstFilter->szName, pszFilterName)) return info.pstFilter;
  }
  return nullptr;
}

int32_t ValueAt(const void *pData) {
  int32_t s32Value = 0;
  memcpy(&s32Value, pData, sizeof(s32Value));
  return s32Value;
}

}  // namespace

// Holds the debug mutex while the filter's function runs.
void _ZE_KEST_Debug_SetFilterParameter(const char *pszPipelineName, const char *pszFilterName,
                                       const char *pszParameterName, const void *pData, uint32_t u32Size) {
  const HoldingDebug holding;
  ZE_KEST_Filter_s *pstFilter = FindFilter(pszPipelineName, pszFilterName);
  if (pstFilter == nullptr || pstFilter->pfnSetParameter == nullptr) return;
  KEST_PRINT("%s %s:%s SetParameter %s %d %u\n", __func__, pszPipelineName, pszFilterName, pszParameterName,
             ValueAt(pData), u32Size);
  const uint32_t u32Result = pstFilter->pfnSetParameter(pstFilter, pszParameterName, pData, u32Size);
  if (u32Result == ZE_KEST_OK) return;
  KEST_ERR("Error (0x%08X)! Fail to set parameter from filter:'%s'\n", u32Result, pstFilter->szName);
}

void _ZE_KEST_Debug_PrintSupportedParameterList() {
  const ZE_KEST_SupportedParameter_s *pst = LoadAcquire(_pstKestSupportedParameterList);
  for (; pst != nullptr; pst = pst->pstNext) {
    KEST_PRINT("'%s', '%s', '%zu'\n", pst->szName, pst->szDescription, pst->sztSize);
  }
}

}  // namespace kest

void ze_kest_Debug_SetSupportedParameterList(const ZE_KEST_SupportedParameter_s *pstHead) {
  kest::StoreRelease(kest::_pstKestSupportedParameterList, pstHead);
}

// No parameter can be read here; the function only checks its arguments.
uint32_t ze_kest_Debug_GetParameter(const char *pszParameterName, void *pData, size_t sztSize) {
  KEST_REQUIRE(pszParameterName != nullptr, "pszParameterName is NULL.\n");
  KEST_REQUIRE(pData != nullptr, "pData is NULL.\n");
  KEST_REQUIRE(sztSize != 0, "Invalid parameter: sztSize!\n");
  KEST_REQUIRE_OR(kest::IsStarted(), ZE_KEST_NOT_INITIALISED, "Err! Not initialized yet!\n");
  KEST_INFO("pszParameterName:%s\n", pszParameterName);
  KEST_PRINT("\n");
  return ZE_KEST_OK;
}
