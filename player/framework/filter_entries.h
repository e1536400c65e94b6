// SPDX-License-Identifier: Apache-2.0
// A filter's entry points for the library, which calls them on the command thread while the filter runs.
#pragma once

#include <cstdint>

#include "ze_kest/model.h"

namespace kest::player {

// ZE_KEST_INVALID_ARGUMENT for a name that the filter's kind does not have, and for a wrong size.
uint32_t GetFilterParameter(ZE_KEST_Filter_s *pstFilter, const char *pszParameterName, void *pData,
                            uint32_t u32Size);
// The same results; also ZE_KEST_INVALID_ARGUMENT for a parameter that can only be read.
uint32_t SetFilterParameter(ZE_KEST_Filter_s *pstFilter, const char *pszParameterName, const void *pData,
                            uint32_t u32Size);

// A debug command: "get" logs the parameters with their values, "state" what the ports hold and the
// parameters; or one of the filter's kind. ZE_KEST_INVALID_ARGUMENT for any other.
unsigned int RunFilterCommand(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand);

}  // namespace kest::player
