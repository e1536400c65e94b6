// SPDX-License-Identifier: Apache-2.0
// What every entry of the data path asks of the filter it is given.
#pragma once

#include <cstdint>

#include "ze_kest/model.h"
#include "ze_kest/result.h"

namespace kest {

inline bool HasPipeline(const ZE_KEST_Filter_s *pstFilter) {
  return pstFilter != nullptr && pstFilter->pstParentPipeline != nullptr;
}

// Reports what is missing under the function's name and gives the result code for it. Out of line, to keep
// what runs in every cycle short.
uint32_t RefuseFilter(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter);

// Leaves the function unless the filter and its parent pipeline exist.
#define KEST_REQUIRE_PIPELINE(pstFilter) \
  if (!HasPipeline(pstFilter)) return RefuseFilter(__func__, pstFilter)

}  // namespace kest
