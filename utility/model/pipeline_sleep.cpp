// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/utility.h"

#include "utility/core/report.h"

uint32_t ze_kest_Utility_UpdatePipelineSleepConfiguration(ZE_KEST_Filter_s *pstFilter) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  ZE_KEST_Pipeline_s *pstPipeline = pstFilter->pstParentPipeline;
  if (pstPipeline == nullptr) {
    KEST_ERR("Error (0x%08X)! Pipeline should not be NULL in filter '%s'!\n",
             static_cast<unsigned int>(ZE_KEST_FAILED), pstFilter->szName);
    return ZE_KEST_FAILED;
  }

  const bool bSamePriority =
      pstFilter->u32SleepPriority != 0 && pstPipeline->u32SleepPriority == pstFilter->u32SleepPriority;
  if (bSamePriority && pstFilter->s32SleepTime >= 0) {
    pstPipeline->s32SleepTime = pstFilter->s32SleepTime;
  } else if (pstPipeline->u32SleepPriority < pstFilter->u32SleepPriority) {
    pstPipeline->u32SleepPriority = pstFilter->u32SleepPriority;
    if (pstFilter->s32SleepTime != 0) pstPipeline->s32SleepTime = pstFilter->s32SleepTime;
  }
  if (pstPipeline->u32WakeUp == 0) pstPipeline->u32WakeUp = pstFilter->u32WakeUp;
  return ZE_KEST_OK;
}
