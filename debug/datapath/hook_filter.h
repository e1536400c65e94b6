// SPDX-License-Identifier: Apache-2.0
// What every entry of the data path asks of the filter it is given.
#pragma once

#include "ze_kest/model.h"
#include "ze_kest/result.h"

#include "utility/core/report.h"

namespace kest {

// Leaves the function unless the filter and its parent pipeline exist.
#define KEST_REQUIRE_PIPELINE(pstFilter)                                        \
  do {                                                                          \
    KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");                 \
    if (pstFilter->pstParentPipeline == nullptr) {                              \
      KEST_ERR("Error (0x%08X)! Pipeline should not be NULL in filter '%s'!\n", \
               static_cast<uint32_t>(ZE_KEST_FAILED), pstFilter->szName);       \
      return ZE_KEST_FAILED;                                                    \
    }                                                                           \
  } while (false)

}  // namespace kest
