// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace kest {

// Carries out one line of the command language. ZE_KEST_OK when a command took it, else what the last one
// that was tried answered: ZE_KEST_INVALID_ARGUMENT.
uint32_t _ZE_KEST_Debug_SetParameter(const char *pszLine);

}  // namespace kest
