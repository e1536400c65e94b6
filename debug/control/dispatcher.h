// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace kest {

// Executes one line of the command language. ZE_KEST_OK when a command took it, otherwise the result of the
// last one tried, ZE_KEST_INVALID_ARGUMENT. C linkage gives it a name that a benchmark can put itself in
// place of.
extern "C" uint32_t _ZE_KEST_Debug_SetParameter(const char *pszLine);

}  // namespace kest
