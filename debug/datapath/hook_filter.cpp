// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/hook_filter.h"

#include "utility/core/report.h"

namespace kest {

__attribute__((cold)) uint32_t RefuseFilter(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_ERR_AS(pszFunction, "Error (0x%08X)! Pipeline should not be NULL in filter '%s'!\n",
              static_cast<uint32_t>(ZE_KEST_FAILED), pstFilter->szName);
  return ZE_KEST_FAILED;
}

}  // namespace kest
