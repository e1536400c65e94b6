/* SPDX-License-Identifier: Apache-2.0
 *
 * A framework in C: a filter of its own, whose process size the library finds, and the exported data. */
#include <stdio.h>
#include <ze_kest/debug.h>
#include <ze_kest/utility.h>

int main(void) {
  ZE_KEST_Pipeline_s stPipeline = {.szName = "Consumer"};
  ZE_KEST_Port_s stPort = {.bConnected = 1,
                           .stPcm = {.sztPcmRingSamples = 256, .sztPcmLevel = 48, .sztPcmSpace = 208}};
  ZE_KEST_Filter_s stFilter = {.szName = "Filter",
                               .pstParentPipeline = &stPipeline,
                               .u32InPortCount = 1,
                               .apstInPort = {&stPort},
                               .sztMaxInPcmProcessSize = ZE_KEST_NO_BOUND,
                               .sztMaxOutPcmProcessSize = ZE_KEST_NO_BOUND};
  uint32_t u32Samples = 0;
  uint32_t u32Result = ze_kest_Utility_CalculateInputPortPcmProcessSize(&stFilter, &u32Samples);
  printf("process size: %u (%u), groups begin at channels %u %u %u\n", (unsigned)u32Samples,
         (unsigned)u32Result, (unsigned)sztPcmGroupBaseChIdx[0], (unsigned)sztPcmGroupBaseChIdx[1],
         (unsigned)sztPcmGroupBaseChIdx[2]);
  return u32Result == ZE_KEST_OK && u32Samples == 48 && sztPcmGroupBaseChIdx[2] == 12 ? 0 : 1;
}
