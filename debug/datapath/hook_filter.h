// SPDX-License-Identifier: Apache-2.0
// The check that every entry point of the data path makes on its filter.
#pragma once

#include <cstdint>

#include "ze_kest/model.h"
#include "ze_kest/result.h"

namespace kest {

inline bool HasPipeline(const ZE_KEST_Filter_s *pstFilter) {
  return pstFilter != nullptr && pstFilter->pstParentPipeline != nullptr;
}

// Reports under the function's name what is missing and returns the result code for it. Out of line to keep
// the code short that runs in every cycle.
uint32_t RefuseFilter(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter);

// Returns from the calling function unless the filter and its parent pipeline exist.
#define KEST_REQUIRE_PIPELINE(pstFilter) \
  if (!HasPipeline(pstFilter)) return RefuseFilter(__func__, pstFilter)

}  // namespace kest
