/* SPDX-License-Identifier: Apache-2.0
 *
 * Runs one turn of the filter on mono ports and looks at what came out. */
#include <stdio.h>
#include <string.h>
#include <ze_kest/module.h>

#define SAMPLES 64

static int16_t s_as16Input[SAMPLES];
/* The library takes a group's storage to have a ring for every channel that the group can have. */
static int16_t s_as16Output[2 * SAMPLES];

static ZE_KEST_Port_s MonoPort(int16_t *ps16Ring, uint32_t u32Held) {
  ZE_KEST_Port_s stPort = {.bConnected = 1,
                           .stPcm = {.apu8PcmGroupBuf = {(uint8_t *)ps16Ring},
                                     .sztPcmRingSamples = SAMPLES,
                                     .sztPcmLevel = u32Held,
                                     .sztPcmSpace = SAMPLES - u32Held,
                                     .stPcmInfo = {1, 48000, 16, {0}},
                                     .u32PcmGroupNum = ZE_KEST_PCM_GROUPS}};
  memset(stPort.stPcm.astPcmGroup, -1, sizeof(stPort.stPcm.astPcmGroup));
  for (uint32_t i = 0; i < ZE_KEST_PCM_GROUPS; ++i)
    stPort.stPcm.astPcmGroup[i].u32ChannelCount = 0;
  stPort.stPcm.astPcmGroup[0] = (ZE_KEST_PcmGroup_s){0, 1, {0, -1, -1, -1, -1, -1, -1, -1, -1, -1}};
  return stPort;
}

int main(void) {
  const ZE_KEST_ModuleFilter_s *pstKind = ze_kest_module(ZE_KEST_MODULE_ABI, 0);
  char szError[256] = "";
  ZE_KEST_Port_s stInput = MonoPort(s_as16Input, SAMPLES);
  ZE_KEST_Port_s stOutput = MonoPort(s_as16Output, 0);
  ZE_KEST_ModuleSetup_s stSetup = {.u32Size = sizeof(stSetup),
                                   .u32MaxSamples = SAMPLES,
                                   .stPcmInfo = stInput.stPcm.stPcmInfo,
                                   .pszConfig = "",
                                   .pszDirectory = "/",
                                   .pszError = szError,
                                   .u32ErrorSize = sizeof(szError)};
  memcpy(stSetup.astPcmGroup, stInput.stPcm.astPcmGroup, sizeof(stSetup.astPcmGroup));
  ZE_KEST_Filter_s stFilter = {.szName = "MyFilter",
                               .u32InPortCount = 1,
                               .u32OutPortCount = 1,
                               .apstInPort = {&stInput},
                               .apstOutPort = {&stOutput},
                               .sztMaxInPcmProcessSize = SAMPLES,
                               .sztMaxOutPcmProcessSize = SAMPLES};
  void *pvSelf = NULL;
  if (pstKind->pfnCreate(pstKind, &stSetup, &pvSelf) != ZE_KEST_OK) {
    fprintf(stderr, "cannot be created: %s\n", szError);
    return 1;
  }
  for (int i = 0; i < SAMPLES; ++i)
    s_as16Input[i] = (int16_t)(100 * i);
  pstKind->pfnSet(pvSelf, 0, 60); /* 6 dB, nearly twice as loud */
  pstKind->pfnProcess(pvSelf, &stFilter, 1);
  pstKind->pfnDestroy(pvSelf);

  printf("read %u, wrote %u, sample 50 is %d\n", (unsigned)stInput.stPcm.sztPcmReadSize,
         (unsigned)stOutput.stPcm.sztPcmWriteSize, s_as16Output[50]);
  const int bAccounted = stInput.stPcm.sztPcmReadSize == SAMPLES && stOutput.stPcm.sztPcmWriteSize == SAMPLES;
  return bAccounted && s_as16Output[50] > 9970 && s_as16Output[50] < 9980 ? 0 : 1;
}
