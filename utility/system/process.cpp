// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/utility.h"

#include "utility/core/platform.h"

int32_t ze_kest_Utility_GetPid(void) {
  return getpid();
}

int32_t ze_kest_Utility_GetTid(void) {
  return kest::CurrentThreadId();
}
