// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace kest {

// kest_output_sinewave_filter=PIPELINE,FILTER  kest_output_sinewave=on|off  kest_print_filter_info=on|off
// kest_filter_debug_level=FILTER,LEVEL
// ZE_KEST_OK when it took the line.
uint32_t _ZE_KEST_Debug_Cmd_DebugIo(const char *pszLine);

}  // namespace kest
