/* SPDX-License-Identifier: Apache-2.0
 *
 * The harness: its ports, the instance, and what goes into the ports and comes out. */
#define _GNU_SOURCE
#include "ze_kest/harness.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "ze_kest/utility.h"

#include "harness/harness_record.h"

#define MOST_CHANNELS 22

static int IsSound(const ZE_KEST_HarnessSetup_s *pst) {
  return pst->u32Size >= sizeof(*pst) && pst->u32Channels >= 1 && pst->u32Channels <= MOST_CHANNELS &&
         (pst->u32BitWidth == 16 || pst->u32BitWidth == 32) && pst->u32InputSamples >= 1 &&
         pst->u32OutputSamples >= 1 && pst->u32MaxSamples >= 1 && pst->u32InputBlocks <= UINT32_MAX / 64 &&
         pst->u32OutputBlocks <= UINT32_MAX / 64 && pst->eGuard <= ZE_KEST_HARNESS_GUARD_FAR;
}

static void DescribeFilter(ZE_KEST_Harness_s *pst) {
  snprintf(pst->stPipeline.szName, sizeof(pst->stPipeline.szName), "Harness");
  pst->stFilter.pstParentPipeline = &pst->stPipeline;
  pst->stFilter.u32InPortCount = 1;
  pst->stFilter.u32OutPortCount = 1;
  pst->stFilter.apstInPort[0] = &pst->stInput.stRecord;
  pst->stFilter.apstOutPort[0] = &pst->stOutput.stRecord;
  pst->stFilter.sztMaxInPcmProcessSize = pst->stSetup.u32MaxSamples;
  pst->stFilter.sztMaxOutPcmProcessSize = pst->stSetup.u32MaxSamples;
  pst->stFilter.pszConfig = pst->pszConfig;
}

/* 1, or 0 when memory is exhausted. */
static int MakeParts(ZE_KEST_Harness_s *pst) {
  const ZE_KEST_HarnessSetup_s *pstSetup = &pst->stSetup;
  pst->pszConfig = strdup(pstSetup->pszConfig == NULL ? "" : pstSetup->pszConfig);
  pst->pszDirectory = strdup(pstSetup->pszDirectory == NULL ? "/" : pstSetup->pszDirectory);
  return pst->pszConfig != NULL && pst->pszDirectory != NULL &&
         HarnessPortMake(&pst->stInput, pstSetup, pstSetup->u32InputSamples, pstSetup->u32InputBlocks) &&
         HarnessPortMake(&pst->stOutput, pstSetup, pstSetup->u32OutputSamples, pstSetup->u32OutputBlocks);
}

uint32_t ze_kest_Harness_Open(const ZE_KEST_HarnessSetup_s *pstSetup, ZE_KEST_Harness_s **ppstHarness) {
  if (pstSetup == NULL || ppstHarness == NULL || !IsSound(pstSetup)) return ZE_KEST_INVALID_ARGUMENT;
  ZE_KEST_Harness_s *pst = calloc(1, sizeof(*pst));
  if (pst == NULL) return ZE_KEST_OUT_OF_MEMORY;
  pst->stSetup = *pstSetup;
  if (!MakeParts(pst)) {
    ze_kest_Harness_Close(pst);
    return ZE_KEST_OUT_OF_MEMORY;
  }
  DescribeFilter(pst);
  *ppstHarness = pst;
  return ZE_KEST_OK;
}

void ze_kest_Harness_Close(ZE_KEST_Harness_s *pstHarness) {
  if (pstHarness == NULL) return;
  ze_kest_Harness_Destroy(pstHarness);
  HarnessPortFree(&pstHarness->stInput);
  HarnessPortFree(&pstHarness->stOutput);
  free(pstHarness->pszConfig);
  free(pstHarness->pszDirectory);
  free(pstHarness);
}

/* ---- The instance ---- */

static void Refuse(ZE_KEST_Harness_s *pst, const char *pszWhy) {
  snprintf(pst->szError, sizeof(pst->szError), "%s", pszWhy);
}

static int TakesFormat(ZE_KEST_Harness_s *pst) {
  const uint32_t u32Width = pst->stSetup.u32BitWidth == 16 ? ZE_KEST_MODULE_16_BITS : ZE_KEST_MODULE_32_BITS;
  const int bTakesWidth = (pst->stKind.u32Widths & u32Width) != 0;
  const int bTakesChannels = pst->stSetup.u32Channels >= pst->stKind.u32LeastChannels &&
                             pst->stSetup.u32Channels <= pst->stKind.u32MostChannels;
  if (!bTakesWidth) Refuse(pst, "the kind takes no samples of this width");
  if (!bTakesChannels) Refuse(pst, "the kind takes no such number of channels");
  return bTakesWidth && bTakesChannels;
}

static uint32_t CallCreate(ZE_KEST_Harness_s *pst, const ZE_KEST_ModuleFilter_s *pstKind) {
  const ZE_KEST_PcmBuffer_s *pstPcm = &pst->stInput.stRecord.stPcm;
  ZE_KEST_ModuleSetup_s stSetup = {.u32Size = sizeof(stSetup),
                                   .u32MaxSamples = pst->stSetup.u32MaxSamples,
                                   .stPcmInfo = pstPcm->stPcmInfo,
                                   .pszConfig = pst->pszConfig,
                                   .pszDirectory = pst->pszDirectory,
                                   .pszError = pst->szError,
                                   .u32ErrorSize = sizeof(pst->szError)};
  memcpy(stSetup.astPcmGroup, pstPcm->astPcmGroup, sizeof(stSetup.astPcmGroup));
  const uint32_t u32Result = pst->stKind.pfnCreate(pstKind, &stSetup, &pst->pvSelf);
  pst->szError[sizeof(pst->szError) - 1] = '\0';
  return u32Result;
}

uint32_t ze_kest_Harness_Create(ZE_KEST_Harness_s *pstHarness, const ZE_KEST_ModuleFilter_s *pstKind) {
  memset(pstHarness->szError, 0, sizeof(pstHarness->szError));
  if (pstHarness->bExists || pstKind == NULL) {
    Refuse(pstHarness, pstKind == NULL ? "there is no kind" : "there is an instance already");
    return ZE_KEST_INVALID_ARGUMENT;
  }
  const size_t sztKnown = pstKind->u32Size < sizeof(*pstKind) ? pstKind->u32Size : sizeof(*pstKind);
  memset(&pstHarness->stKind, 0, sizeof(pstHarness->stKind));
  memcpy(&pstHarness->stKind, pstKind, sztKnown);
  if (!TakesFormat(pstHarness)) return ZE_KEST_INVALID_ARGUMENT;
  pstHarness->pvSelf = NULL;
  const uint32_t u32Result = CallCreate(pstHarness, pstKind);
  if (u32Result != ZE_KEST_OK) return u32Result;
  pstHarness->bExists = 1;
  pstHarness->u32MetaRemainder = 0;
  ze_kest_Utility_Strncpy(pstHarness->stFilter.szName, pstHarness->stKind.pszName, ZE_KEST_NAME_SIZE - 1);
  return ZE_KEST_OK;
}

void ze_kest_Harness_Destroy(ZE_KEST_Harness_s *pstHarness) {
  if (pstHarness->bExists) pstHarness->stKind.pfnDestroy(pstHarness->pvSelf);
  pstHarness->bExists = 0;
  pstHarness->pvSelf = NULL;
}

const char *ze_kest_Harness_Error(const ZE_KEST_Harness_s *pstHarness) {
  return pstHarness->szError;
}

void *ze_kest_Harness_Self(const ZE_KEST_Harness_s *pstHarness) {
  return pstHarness->pvSelf;
}

ZE_KEST_Filter_s *ze_kest_Harness_Filter(ZE_KEST_Harness_s *pstHarness) {
  return &pstHarness->stFilter;
}

/* ---- Data ---- */

uint32_t ze_kest_Harness_Room(const ZE_KEST_Harness_s *pstHarness) {
  return pstHarness->stInput.stRecord.stPcm.sztPcmSpace;
}

uint32_t ze_kest_Harness_Held(const ZE_KEST_Harness_s *pstHarness) {
  return pstHarness->stOutput.stRecord.stPcm.sztPcmLevel;
}

void ze_kest_Harness_Place(ZE_KEST_Harness_s *pstHarness, uint32_t u32Input, uint32_t u32Output) {
  HarnessPortPlace(&pstHarness->stInput, u32Input);
  HarnessPortPlace(&pstHarness->stOutput, u32Output);
}

uint32_t ze_kest_Harness_Fill(ZE_KEST_Harness_s *pstHarness, const int32_t *ps32Frames, uint32_t u32Frames) {
  const uint32_t u32Room = ze_kest_Harness_Room(pstHarness);
  const uint32_t u32Taken = u32Frames < u32Room ? u32Frames : u32Room;
  HarnessPortPut(&pstHarness->stInput, ps32Frames, u32Taken);
  return u32Taken;
}

uint32_t ze_kest_Harness_Take(ZE_KEST_Harness_s *pstHarness, int32_t *ps32Frames, uint32_t u32Frames) {
  const uint32_t u32Held = ze_kest_Harness_Held(pstHarness);
  const uint32_t u32Taken = u32Frames < u32Held ? u32Frames : u32Held;
  HarnessPortGet(&pstHarness->stOutput, ps32Frames, u32Taken);
  return u32Taken;
}

typedef struct MetadataBlock_s {
  uint32_t u32Tag;
  uint32_t u32PayloadBytes;
  uint32_t au32Rest[2];
  uint64_t u64Number;
  uint64_t u64Check;
} MetadataBlock_s;

static MetadataBlock_s BlockOf(uint64_t u64Number) {
  const uint32_t u32Low = (uint32_t)u64Number;
  return (MetadataBlock_s){1,
                           METADATA_BLOCK_SIZE - ZE_KEST_METADATA_HEADER_SIZE,
                           {~u32Low, u32Low * 2654435761u},
                           u64Number,
                           u64Number * 0x9E3779B97F4A7C15u};
}

uint32_t ze_kest_Harness_FillMetadata(ZE_KEST_Harness_s *pstHarness, uint64_t u64Number) {
  const MetadataBlock_s stBlock = BlockOf(u64Number);
  if (pstHarness->stInput.stRecord.stMeta.sztSpace < METADATA_BLOCK_SIZE) return ZE_KEST_NOTHING_TO_PROCESS;
  HarnessPortPutBlock(&pstHarness->stInput, (const uint8_t *)&stBlock);
  return ZE_KEST_OK;
}

uint32_t ze_kest_Harness_TakeMetadata(ZE_KEST_Harness_s *pstHarness, uint64_t *pu64Number) {
  MetadataBlock_s stBlock;
  if (pstHarness->stOutput.stRecord.stMeta.sztLevel < METADATA_BLOCK_SIZE) return ZE_KEST_NOTHING_TO_PROCESS;
  HarnessPortGetBlock(&pstHarness->stOutput, (uint8_t *)&stBlock);
  *pu64Number = stBlock.u64Number;
  const MetadataBlock_s stSame = BlockOf(stBlock.u64Number);
  return memcmp(&stSame, &stBlock, sizeof(stBlock)) == 0 ? ZE_KEST_OK : ZE_KEST_FAILED;
}

/* ---- Guard pages ---- */

static int Describe(const HarnessPort_s *pst, const char *pszPort, const void *pvAddress, char *pszText,
                    uint32_t u32Size) {
  for (uint32_t g = 0; g <= ZE_KEST_PCM_GROUPS; ++g) {
    const int bMeta = g == ZE_KEST_PCM_GROUPS;
    const long sztApart = GuardedDistance(bMeta ? &pst->stMeta : &pst->astGroup[g], pvAddress);
    if (sztApart == 0) continue;
    const int bBehind = sztApart > 0;
    const long sztBytes = bBehind ? sztApart : -sztApart;
    const char *pszSide = bBehind ? "behind" : "before";
    if (bMeta) {
      snprintf(pszText, u32Size, "byte %ld %s the %s's metadata", sztBytes, pszSide, pszPort);
    } else {
      snprintf(pszText, u32Size, "byte %ld %s the rings of the %s's group %u", sztBytes, pszSide, pszPort,
               (unsigned)g);
    }
    return 1;
  }
  return 0;
}

uint32_t ze_kest_Harness_Where(const ZE_KEST_Harness_s *pstHarness, const void *pvAddress, char *pszText,
                               uint32_t u32Size) {
  if (u32Size > 0) pszText[0] = '\0';
  return (uint32_t)(Describe(&pstHarness->stInput, "input", pvAddress, pszText, u32Size) ||
                    Describe(&pstHarness->stOutput, "output", pvAddress, pszText, u32Size));
}
