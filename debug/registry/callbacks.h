// SPDX-License-Identifier: Apache-2.0
// Debug commands to registered filters. The mutex is held across the filter's call.
#pragma once

#include <cstdint>

#include "ze_kest/model.h"

namespace kest {

// To the entry at a position, the head's being 0. The callback's result; ZE_KEST_INVALID_ARGUMENT without
// one.
uint32_t CallBackByIndex(int32_t s32Index, char *pszCommand);

// To the first filter of exactly these names, which are cut to the length of a name field. As above.
uint32_t _ZE_KEST_Debug_Cmd_TriggerCallback_Parse_By_Text(const char *pszPipelineName,
                                                          const char *pszFilterName, char *pszCommand);

// The callback of the test filter.
unsigned int _ZE_KEST_Debug_CallbackTestFunc(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand);

}  // namespace kest
