// SPDX-License-Identifier: Apache-2.0
// Passes debug commands to registered filters. The debug mutex is held while the filter's callback runs.
#pragma once

#include <cstdint>

#include "ze_kest/model.h"

namespace kest {

// Passes the command to the entry at a position of the list; the head has position 0. Returns the callback's
// result, or ZE_KEST_INVALID_ARGUMENT when there is no such entry or it has no callback.
uint32_t CallBackByIndex(int32_t s32Index, char *pszCommand);

// The same for the first filter with exactly these names, which are cut to the length of a name field.
uint32_t _ZE_KEST_Debug_Cmd_TriggerCallback_Parse_By_Text(const char *pszPipelineName,
                                                          const char *pszFilterName, char *pszCommand);

// The callback of the test filter.
unsigned int _ZE_KEST_Debug_CallbackTestFunc(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand);

}  // namespace kest
