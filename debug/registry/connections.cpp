// SPDX-License-Identifier: Apache-2.0
// Which pipeline feeds which.
#include <cstring>

#include "ze_kest/debug.h"

#include "debug/base/debug_mutex.h"
#include "debug/registry/registry.h"
#include "utility/core/report.h"
#include "utility/core/text_field.h"

// Only the first pipeline of this name gets the connection. When all its slots are in use, the connection is
// dropped without a report.
uint32_t ze_kest_Debug_ConnectPipeline(const char *pszPipelineName, const char *pszFedPipelineName) {
  KEST_REQUIRE(pszPipelineName != nullptr, "pszPipelineName is NULL.\n");
  const kest::HoldingDebug holding;
  for (kest::ZE_KEST_DebugInfo_s &info : kest::Registry()) {
    if (!kest::IsPipelineNamed(info, pszPipelineName)) continue;
    for (auto &szConnected : info.aszConnected) {
      if (*szConnected != '\0') continue;
      const bool bCopied = kest::CopyText(szConnected, pszFedPipelineName);
      KEST_REQUIRE_OR(bCopied, ZE_KEST_FAILED, "Err! Strncpy failed!\n");
      return ZE_KEST_OK;
    }
    return ZE_KEST_OK;
  }
  return ZE_KEST_OK;
}

// Clears all matching slots of all pipelines of this name.
uint32_t ze_kest_Debug_DisconnectPipeline(const char *pszPipelineName, const char *pszFedPipelineName) {
  KEST_REQUIRE_OR(pszPipelineName != nullptr, ZE_KEST_OK, "pszPipelineName is NULL.\n");
  KEST_REQUIRE_OR(pszFedPipelineName != nullptr, ZE_KEST_OK, "pszFedPipelineName is NULL.\n");
  const kest::HoldingDebug holding;
  for (kest::ZE_KEST_DebugInfo_s &info : kest::Registry()) {
    if (!kest::IsPipelineNamed(info, pszPipelineName)) continue;
    for (auto &szConnected : info.aszConnected) {
      if (strcmp(szConnected, pszFedPipelineName) == 0) memset(szConnected, 0, sizeof(szConnected));
    }
  }
  return ZE_KEST_OK;
}
