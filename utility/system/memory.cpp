// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>

#include "ze_kest/utility.h"

#include "utility/core/report.h"

uint32_t ze_kest_Utility_MemoryAlloc(void **ppvOut, size_t sztSize) {
  KEST_REQUIRE(ppvOut != nullptr, "ppvOut is NULL.\n");
  *ppvOut = sztSize == 0 ? nullptr : malloc(sztSize);
  KEST_REQUIRE_OR(*ppvOut != nullptr, ZE_KEST_FAILED, "Error! MALLOC error! \n");
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_MemoryFree(void **ppvInOut) {
  KEST_REQUIRE(ppvInOut != nullptr, "ppvInOut is NULL.\n");
  KEST_REQUIRE_OR(*ppvInOut != nullptr, ZE_KEST_FAILED, "Error! FREE error! \n");
  free(*ppvInOut);
  *ppvInOut = nullptr;
  return ZE_KEST_OK;
}

void *ze_kest_Utility_MemoryReAlloc(void *pvBlock, size_t sztSize) {
  return realloc(pvBlock, sztSize);
}
