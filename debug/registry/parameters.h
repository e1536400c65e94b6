// SPDX-License-Identifier: Apache-2.0
// Parameters of registered filters.
#pragma once

#include <cstdint>

namespace kest {

// Sets a parameter of the first filter whose names begin with the given ones. pData: a 32-bit value.
void _ZE_KEST_Debug_SetFilterParameter(const char *pszPipelineName, const char *pszFilterName,
                                       const char *pszParameterName, const void *pData, uint32_t u32Size);

// Prints the framework's list of supported parameters.
void _ZE_KEST_Debug_PrintSupportedParameterList();

}  // namespace kest
