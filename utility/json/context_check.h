// SPDX-License-Identifier: Apache-2.0
// Checks of a JSON context, shared by several operations and reported under the name of the calling one.
#pragma once

#include "ze_kest/json.h"

#include "utility/core/report.h"

namespace kest {

inline bool HasTokenArray(const char *pszFunction, const ZE_KEST_Jsmn_s *pstJsmn) {
  KEST_REQUIRE_OR_AS(pszFunction, pstJsmn != nullptr, false, "pstJsmn is NULL.\n");
  KEST_REQUIRE_OR_AS(pszFunction, pstJsmn->pstTokenInfo != nullptr, false,
                     "pstJsmn->pstTokenInfo is NULL.\n");
  KEST_REQUIRE_OR_AS(pszFunction, pstJsmn->sztTokenInfoSize != 0, false,
                     "Invalid parameter: pstJsmn->sztTokenInfoSize!\n");
  return true;
}

inline bool HasTokens(const char *pszFunction, const ZE_KEST_Jsmn_s *pstJsmn) {
  if (!HasTokenArray(pszFunction, pstJsmn)) return false;
  KEST_REQUIRE_OR_AS(pszFunction, pstJsmn->u32TotalTokenCounter != 0, false,
                     "Invalid parameter: pstJsmn->u32TotalTokenCounter!\n");
  return true;
}

}  // namespace kest
