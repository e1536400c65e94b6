/* SPDX-License-Identifier: Apache-2.0
 *
 * What a harness consists of. */
#ifndef KEST_HARNESS_RECORD_H
#define KEST_HARNESS_RECORD_H

#include "ze_kest/harness.h"

#include "harness/harness_port.h"

struct ZE_KEST_Harness_s {
  ZE_KEST_HarnessSetup_s stSetup;
  char *pszConfig;
  char *pszDirectory;
  ZE_KEST_Pipeline_s stPipeline;
  ZE_KEST_Pipeline_s stPipelineBefore;
  ZE_KEST_Filter_s stFilter;
  ZE_KEST_Filter_s stFilterBefore;
  HarnessPort_s stInput;
  HarnessPort_s stOutput;
  ZE_KEST_ModuleFilter_s stKind; /* of the instance; fields that the module lacks are 0 */
  void *pvSelf;
  int bExists;
  uint32_t u32MetaRemainder; /* samples whose metadata has not been moved */
  char szError[1024];
};

#endif
