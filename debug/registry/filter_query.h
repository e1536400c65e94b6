// SPDX-License-Identifier: Apache-2.0
// Reads parameters of a filter for the status report.
#pragma once

#include "ze_kest/model.h"
#include "ze_kest/result.h"

#include "utility/core/report.h"

namespace kest {

// The parameter's value. When the filter does not answer, 0 and a report under pszFunction.
template <typename Value>
Value Query(const char *pszFunction, ZE_KEST_Filter_s &filter, const char *pszParameterName) {
  Value value = 0;
  const uint32_t u32Result =
      filter.pfnGetParameter == nullptr
          ? static_cast<uint32_t>(ZE_KEST_INVALID_ARGUMENT)
          : filter.pfnGetParameter(&filter, pszParameterName, &value, static_cast<uint32_t>(sizeof(value)));
  if (u32Result == ZE_KEST_OK) return value;
  KEST_ERR_AS(pszFunction, "Error (0x%08X)! Fail to get parameter from filter:'%s'\n", u32Result,
              filter.szName);
  return 0;
}

}  // namespace kest
