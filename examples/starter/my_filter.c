/* SPDX-License-Identifier: Apache-2.0
 *
 * A filter to begin with: a gain in tenths of a decibel. Rename it and replace Amplify16 and Amplify32. */
#include <math.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <ze_kest/module.h>
#include <ze_kest/utility.h>

#define UNITY 65536 /* of the linear gain */

typedef struct MyFilter_s {
  uint32_t u32BitWidth;
  void *pvWork;               /* u32MaxSamples samples of every channel */
  _Atomic int32_t s32TenthDb; /* the command thread sets both while Process runs */
  _Atomic int32_t s32Gain;
} MyFilter_s;

/* ---- The work: one channel, real-time safe ---- */

static int64_t Clamp(int64_t s64Value, int64_t s64Least, int64_t s64Most) {
  if (s64Value < s64Least) return s64Least;
  return s64Value > s64Most ? s64Most : s64Value;
}

static void Amplify16(const int16_t *ps16In, int16_t *ps16Out, uint32_t u32Samples, int64_t s64Gain) {
  for (uint32_t i = 0; i < u32Samples; ++i) {
    ps16Out[i] = (int16_t)Clamp(ps16In[i] * s64Gain / UNITY, INT16_MIN, INT16_MAX);
  }
}

static void Amplify32(const int32_t *ps32In, int32_t *ps32Out, uint32_t u32Samples, int64_t s64Gain) {
  for (uint32_t i = 0; i < u32Samples; ++i) {
    ps32Out[i] = (int32_t)Clamp(ps32In[i] * s64Gain / UNITY, INT32_MIN, INT32_MAX);
  }
}

/* ---- One turn: read, work, write, account ---- */

static uint32_t Smaller(uint32_t u32A, uint32_t u32B) {
  return u32A < u32B ? u32A : u32B;
}

/* What the input holds and the output has room for, in one piece: Analyze below points into the input's rings
 * and knows nothing of their ends. What is left over waits for the next turn. */
static uint32_t SamplesOfThisTurn(const ZE_KEST_Filter_s *pstFilter) {
  const ZE_KEST_PcmBuffer_s *pstInput = &pstFilter->apstInPort[0]->stPcm;
  uint32_t u32Held = 0, u32Room = 0;
  ze_kest_Utility_CalculateInputPortPcmProcessSize(pstFilter, &u32Held);
  ze_kest_Utility_CalculateOutputPortPcmProcessSize(pstFilter, &u32Room);
  const uint32_t u32InOnePiece = pstInput->sztPcmRingSamples - pstInput->sztPcmReadOffset;
  return Smaller(Smaller(u32Held, u32Room), u32InOnePiece);
}

static void Process16(MyFilter_s *pstSelf, ZE_KEST_Filter_s *pstFilter, uint32_t u32Samples) {
  int16_t *apCh[ZE_KEST_PCM_CHANNEL_ENTRIES] = {NULL};
  uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES] = {0};
  uint8_t bGroupPresent = 0;
  int16_t *ps16Out = pstSelf->pvWork;
  ze_kest_Utility_AnalyzeInputPort16BitPcmGroup(pstFilter, 0, apCh, au16Stride, &bGroupPresent);
  for (uint32_t i = 0; i < ZE_KEST_PCM_CHANNEL_ENTRIES; ++i) {
    if (apCh[i] == NULL) continue; /* no such channel */
    Amplify16(apCh[i], ps16Out, u32Samples, pstSelf->s32Gain);
    apCh[i] = ps16Out;
    ps16Out += u32Samples;
  }
  ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(pstFilter, u32Samples, apCh, au16Stride);
}

static void Process32(MyFilter_s *pstSelf, ZE_KEST_Filter_s *pstFilter, uint32_t u32Samples) {
  int32_t *apCh[ZE_KEST_PCM_CHANNEL_ENTRIES] = {NULL};
  uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES] = {0};
  uint8_t bGroupPresent = 0;
  int32_t *ps32Out = pstSelf->pvWork;
  ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(pstFilter, 0, apCh, au16Stride, &bGroupPresent);
  for (uint32_t i = 0; i < ZE_KEST_PCM_CHANNEL_ENTRIES; ++i) {
    if (apCh[i] == NULL) continue;
    Amplify32(apCh[i], ps32Out, u32Samples, pstSelf->s32Gain);
    apCh[i] = ps32Out;
    ps32Out += u32Samples;
  }
  ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(pstFilter, u32Samples, apCh, au16Stride);
}

static void Process(void *pvSelf, ZE_KEST_Filter_s *pstFilter, uint32_t bEnded) {
  MyFilter_s *pstSelf = pvSelf;
  const uint32_t u32Samples = SamplesOfThisTurn(pstFilter);
  (void)bEnded; /* nothing is held back, so there is nothing to do at the end */
  if (u32Samples == 0) return;
  if (pstSelf->u32BitWidth == 16) {
    Process16(pstSelf, pstFilter, u32Samples);
  } else {
    Process32(pstSelf, pstFilter, u32Samples);
  }
  ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(pstFilter, u32Samples);
  ze_kest_Utility_UpdateAllInputPortPcmReadSize(pstFilter, u32Samples);
}

/* ---- Parameters ---- */

static const ZE_KEST_ModuleParameter_s kGain = {.u32Size = sizeof(ZE_KEST_ModuleParameter_s),
                                                .pszName = "Gain",
                                                .pszDescription = "of every channel",
                                                .pszUnit = "dB",
                                                .u32Decimals = 1,
                                                .s32Least = -1000,
                                                .s32Most = 200,
                                                .s32Default = 0};

static const ZE_KEST_ModuleParameter_s *Parameter(void *pvSelf, uint32_t u32Index) {
  (void)pvSelf;
  return u32Index == 0 ? &kGain : NULL;
}

static int32_t Get(void *pvSelf, uint32_t u32Index) {
  MyFilter_s *pstSelf = pvSelf;
  (void)u32Index;
  return pstSelf->s32TenthDb;
}

static void Set(void *pvSelf, uint32_t u32Index, int32_t s32Value) {
  MyFilter_s *pstSelf = pvSelf;
  (void)u32Index;
  pstSelf->s32TenthDb = s32Value;
  pstSelf->s32Gain = (int32_t)lrint(pow(10.0, s32Value / 200.0) * UNITY);
}

/* ---- Life ---- */

static void Destroy(void *pvSelf) {
  MyFilter_s *pstSelf = pvSelf;
  free(pstSelf->pvWork);
  free(pstSelf);
}

static uint32_t Create(const ZE_KEST_ModuleFilter_s *pstKind, const ZE_KEST_ModuleSetup_s *pstSetup,
                       void **ppvSelf) {
  (void)pstKind;
  if (pstSetup->pszConfig[0] != '\0') {
    snprintf(pstSetup->pszError, pstSetup->u32ErrorSize, "it takes no configuration");
    return ZE_KEST_INVALID_ARGUMENT;
  }
  MyFilter_s *pstSelf = calloc(1, sizeof(*pstSelf));
  void *pvWork = calloc((size_t)pstSetup->u32MaxSamples * pstSetup->stPcmInfo.u32TotalChannels,
                        pstSetup->stPcmInfo.u32BitWidth / 8);
  if (pstSelf == NULL || pvWork == NULL) {
    free(pvWork);
    free(pstSelf);
    snprintf(pstSetup->pszError, pstSetup->u32ErrorSize, "memory is exhausted");
    return ZE_KEST_OUT_OF_MEMORY;
  }
  pstSelf->u32BitWidth = pstSetup->stPcmInfo.u32BitWidth;
  pstSelf->pvWork = pvWork;
  Set(pstSelf, 0, kGain.s32Default);
  *ppvSelf = pstSelf;
  return ZE_KEST_OK;
}

/* ---- What the module holds ---- */

static const ZE_KEST_ModuleFilter_s kMyFilter = {
    .u32Size = sizeof(ZE_KEST_ModuleFilter_s),
    .u32FilterSize = sizeof(ZE_KEST_Filter_s),
    .u32PortSize = sizeof(ZE_KEST_Port_s),
    .pszName = "MyFilter",
    .pszVersion = "1.0",
    .pszDescription = "a gain to begin with",
    .u32Widths = ZE_KEST_MODULE_16_BITS | ZE_KEST_MODULE_32_BITS,
    .u32LeastChannels = 1,
    .u32MostChannels = 22,
    .pfnCreate = Create,
    .pfnDestroy = Destroy,
    .pfnProcess = Process,
    .pfnParameter = Parameter,
    .pfnGet = Get,
    .pfnSet = Set,
};

const ZE_KEST_ModuleFilter_s *ze_kest_module(uint32_t u32Abi, uint32_t u32Index) {
  return u32Abi == ZE_KEST_MODULE_ABI && u32Index == 0 ? &kMyFilter : NULL;
}
