/* SPDX-License-Identifier: Apache-2.0
 *
 * A module that calls a function that nobody has. */
#include "ze_kest/module.h"

const ZE_KEST_ModuleFilter_s *MissingFunction(void);

const ZE_KEST_ModuleFilter_s *ze_kest_module(uint32_t u32Abi, uint32_t u32Index) {
  return u32Abi + u32Index == 0 ? MissingFunction() : 0;
}
