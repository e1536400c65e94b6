// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include "ze_kest/utility.h"

bool ze_kest_utility_IsLKESTMode(void) {
  return access("/proc/asound/qdrtvsndcard", F_OK) == 0;
}

uint32_t ze_kest_utility_LkestCheckParentPipeline(void) {
  return ZE_KEST_OK;
}
