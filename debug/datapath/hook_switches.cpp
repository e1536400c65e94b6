// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/hook_switches.h"

namespace kest {

uint32_t _u32KestHookSwitches = 0;

}  // namespace kest
