/* SPDX-License-Identifier: Apache-2.0
 *
 * A turn, and what it may have done wrong. */
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "ze_kest/port.h"

#include "harness/harness_record.h"

static uint32_t Smaller(uint32_t u32A, uint32_t u32B) {
  return u32A < u32B ? u32A : u32B;
}

ZE_KEST_PRINTF(3, 4)
static void Note(ZE_KEST_HarnessTurn_s *pst, uint32_t u32Fault, const char *pszFormat, ...) {
  const size_t sztUsed = strlen(pst->szSeen);
  const int s32Separator =
      snprintf(pst->szSeen + sztUsed, sizeof(pst->szSeen) - sztUsed, "%s", sztUsed > 0 ? "; " : "");
  const size_t sztBegin = sztUsed + (size_t)s32Separator;
  va_list args;
  va_start(args, pszFormat);
  if (sztBegin < sizeof(pst->szSeen)) {
    vsnprintf(pst->szSeen + sztBegin, sizeof(pst->szSeen) - sztBegin, pszFormat, args);
  }
  va_end(args);
  pst->u32Faults |= u32Fault;
}

static void CheckAmounts(const ZE_KEST_Harness_s *pst, ZE_KEST_HarnessTurn_s *pstTurn) {
  const ZE_KEST_PcmBuffer_s *pstIn = &pst->stInput.stBefore.stPcm;
  const ZE_KEST_PcmBuffer_s *pstOut = &pst->stOutput.stBefore.stPcm;
  const uint32_t u32Read = pst->stInput.stRecord.stPcm.sztPcmReadSize;
  const uint32_t u32Written = pst->stOutput.stRecord.stPcm.sztPcmWriteSize;
  const uint32_t u32Most = pst->stSetup.u32MaxSamples;
  pstTurn->u32Read = Smaller(u32Read, pstIn->sztPcmLevel);
  pstTurn->u32Written = Smaller(u32Written, pstOut->sztPcmSpace);
  if (u32Read > pstIn->sztPcmLevel) {
    Note(pstTurn, ZE_KEST_HARNESS_READ_TOO_MUCH, "it accounts for %u samples read; the input held %u",
         u32Read, pstIn->sztPcmLevel);
  }
  if (u32Written > pstOut->sztPcmSpace) {
    Note(pstTurn, ZE_KEST_HARNESS_WROTE_TOO_MUCH,
         "it accounts for %u samples written; the output had room for %u", u32Written, pstOut->sztPcmSpace);
  }
  if (u32Read > u32Most || u32Written > u32Most) {
    Note(pstTurn, ZE_KEST_HARNESS_MOVED_TOO_MUCH,
         "it accounts for %u samples read and %u written; a call may move %u", u32Read, u32Written, u32Most);
  }
}

static void CheckMetadata(const ZE_KEST_Harness_s *pst, ZE_KEST_HarnessTurn_s *pstTurn) {
  const uint32_t u32Read = pst->stInput.stRecord.stMeta.sztReadSize;
  const uint32_t u32Written = pst->stOutput.stRecord.stMeta.sztWriteSize;
  const int bMoves = (pst->stKind.u32Flags & ZE_KEST_MODULE_FORWARDS_METADATA) != 0;
  if (!bMoves && (u32Read > 0 || u32Written > 0)) {
    Note(pstTurn, ZE_KEST_HARNESS_MOVED_METADATA,
         "it moves metadata, %u bytes read and %u written, but lacks ZE_KEST_MODULE_FORWARDS_METADATA",
         u32Read, u32Written);
  }
  if (u32Read > pst->stInput.stBefore.stMeta.sztLevel ||
      u32Written > pst->stOutput.stBefore.stMeta.sztSpace) {
    Note(pstTurn, ZE_KEST_HARNESS_METADATA_TOO_MUCH,
         "it accounts for %u bytes of metadata read and %u written; there were %u, and room for %u", u32Read,
         u32Written, pst->stInput.stBefore.stMeta.sztLevel, pst->stOutput.stBefore.stMeta.sztSpace);
  }
  if (u32Read % METADATA_BLOCK_SIZE != 0 || u32Written % METADATA_BLOCK_SIZE != 0) {
    Note(pstTurn, ZE_KEST_HARNESS_SPLIT_METADATA,
         "it accounts for a part of a metadata block: %u bytes read, %u written, in blocks of %u", u32Read,
         u32Written, METADATA_BLOCK_SIZE);
  }
}

/* The record as it may be after a turn: what the Update functions of the input add to, or of the output. */
static ZE_KEST_Port_s Permitted(const HarnessPort_s *pst, int bInput) {
  const ZE_KEST_Port_s *pstNow = &pst->stRecord;
  ZE_KEST_Port_s stPort = pst->stBefore;
  if (bInput) {
    stPort.stPcm.sztPcmReadSize = pstNow->stPcm.sztPcmReadSize;
    stPort.stPcm.sztPcmTotalRead = pstNow->stPcm.sztPcmTotalRead;
    stPort.stPcm.u64PcmReadCount = pstNow->stPcm.u64PcmReadCount;
    stPort.stMeta.sztReadSize = pstNow->stMeta.sztReadSize;
    stPort.stMeta.sztTotalRead = pstNow->stMeta.sztTotalRead;
    stPort.stMeta.au64Count[0] = pstNow->stMeta.au64Count[0];
  } else {
    stPort.stPcm.sztPcmWriteSize = pstNow->stPcm.sztPcmWriteSize;
    stPort.stMeta.sztWriteSize = pstNow->stMeta.sztWriteSize;
  }
  return stPort;
}

// Padding included: records are copied whole, and begin as zeroes.
static int Differ(const void *pvBefore, const void *pvNow, size_t sztRecord) {
  return memcmp(pvBefore, pvNow, sztRecord) != 0;
}

static int PortRecordChanged(const HarnessPort_s *pst, int bInput) {
  const ZE_KEST_Port_s stPermitted = Permitted(pst, bInput);
  return Differ(&stPermitted, &pst->stRecord, sizeof(stPermitted));
}

static void CheckRecords(const ZE_KEST_Harness_s *pst, ZE_KEST_HarnessTurn_s *pstTurn) {
  const char *pszWhich = NULL;
  if (Differ(&pst->stFilterBefore, &pst->stFilter, sizeof(pst->stFilter))) pszWhich = "filter's";
  if (Differ(&pst->stPipelineBefore, &pst->stPipeline, sizeof(pst->stPipeline))) pszWhich = "pipeline's";
  if (PortRecordChanged(&pst->stInput, 1)) pszWhich = "input port's";
  if (PortRecordChanged(&pst->stOutput, 0)) pszWhich = "output port's";
  if (pszWhich == NULL) return;
  Note(pstTurn, ZE_KEST_HARNESS_CHANGED_RECORD,
       "it changes a field of the %s record that the Update functions do not change", pszWhich);
}

static void CheckRings(const ZE_KEST_Harness_s *pst, ZE_KEST_HarnessTurn_s *pstTurn) {
  const uint32_t u32MetaWritten =
      Smaller(pst->stOutput.stRecord.stMeta.sztWriteSize, pst->stOutput.stBefore.stMeta.sztSpace);
  if (HarnessPortChanged(&pst->stInput, 0, 0)) {
    Note(pstTurn, ZE_KEST_HARNESS_CHANGED_INPUT, "it changes bytes in the input's rings");
  }
  if (HarnessPortChanged(&pst->stOutput, pstTurn->u32Written, u32MetaWritten)) {
    Note(pstTurn, ZE_KEST_HARNESS_CHANGED_OUTPUT,
         "it changes bytes in the output's rings beside the %u samples that it accounts for",
         pstTurn->u32Written);
  }
  if (HarnessPortUnwritten(&pst->stOutput, pstTurn->u32Written)) {
    Note(pstTurn, ZE_KEST_HARNESS_UNWRITTEN,
         "it accounts for %u samples written and left some of them unwritten", pstTurn->u32Written);
  }
}

/* A turn must not leave the harness with other records than its own. */
static void Restore(ZE_KEST_Harness_s *pst, ZE_KEST_HarnessTurn_s *pstTurn) {
  if ((pstTurn->u32Faults & ZE_KEST_HARNESS_CHANGED_RECORD) == 0) return;
  const ZE_KEST_Port_s stInput = Permitted(&pst->stInput, 1), stOutput = Permitted(&pst->stOutput, 0);
  pst->stInput.stRecord = stInput;
  pst->stOutput.stRecord = stOutput;
  pst->stFilter = pst->stFilterBefore;
  pst->stPipeline = pst->stPipelineBefore;
}

/* Moves the metadata that belongs to the samples that were read, as far as there is room. */
static void MoveMetadata(ZE_KEST_Harness_s *pst, uint32_t u32Read) {
  uint32_t u32Held = 0, u32Room = 0;
  pst->stInput.stRecord.stMeta.sztReadSize = 0;
  pst->stOutput.stRecord.stMeta.sztWriteSize = 0;
  if (pst->stInput.stRecord.stMeta.sztSize == 0) return;
  const uint32_t u32Due = (pst->u32MetaRemainder + u32Read) / ZE_KEST_METADATA_SAMPLES;
  ze_kest_Utility_CalculateInputPortMetadataProcessSize(&pst->stFilter, &u32Held);
  ze_kest_Utility_CalculateOutputPortMetadataProcessSize(&pst->stFilter, &u32Room);
  const uint32_t u32Bytes = ze_kest_Utility_QueryInputMinMetaProcessSize(
      &pst->stFilter, u32Read, Smaller(u32Held, u32Room), &pst->u32MetaRemainder);
  pst->u32MetaRemainder += (u32Due - u32Bytes / METADATA_BLOCK_SIZE) * ZE_KEST_METADATA_SAMPLES;
  ze_kest_Utility_WriteAllOutputPortMetadataBuffer(&pst->stFilter, 0, u32Bytes);
  ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(&pst->stFilter, u32Bytes);
  ze_kest_Utility_UpdateAllInputPortMetadataReadSize(&pst->stFilter, u32Bytes);
}

/* In bytes. The harness itself moves blocks in one piece, which must not end behind a ring. */
static uint32_t WholeBlocks(uint32_t u32Bytes, uint32_t u32Most) {
  return Smaller(u32Bytes, u32Most) / METADATA_BLOCK_SIZE * METADATA_BLOCK_SIZE;
}

static void ReleaseAndCommit(ZE_KEST_Harness_s *pst, const ZE_KEST_HarnessTurn_s *pstTurn) {
  const ZE_KEST_DataBuffer_s *pstIn = &pst->stInput.stRecord.stMeta, *pstOut = &pst->stOutput.stRecord.stMeta;
  HarnessPortRelease(&pst->stInput, pstTurn->u32Read, WholeBlocks(pstIn->sztReadSize, pstIn->sztLevel));
  HarnessPortCommit(&pst->stOutput, pstTurn->u32Written, WholeBlocks(pstOut->sztWriteSize, pstOut->sztSpace));
}

uint32_t ze_kest_Harness_Turn(ZE_KEST_Harness_s *pstHarness, uint32_t bEnded,
                              ZE_KEST_HarnessTurn_s *pstTurn) {
  ZE_KEST_HarnessTurn_s stTurn = {0};
  HarnessPortRemember(&pstHarness->stInput);
  HarnessPortRemember(&pstHarness->stOutput);
  pstHarness->stFilterBefore = pstHarness->stFilter;
  pstHarness->stPipelineBefore = pstHarness->stPipeline;
  pstHarness->stKind.pfnProcess(pstHarness->pvSelf, &pstHarness->stFilter, bEnded);

  CheckAmounts(pstHarness, &stTurn);
  CheckMetadata(pstHarness, &stTurn);
  CheckRecords(pstHarness, &stTurn);
  CheckRings(pstHarness, &stTurn);
  Restore(pstHarness, &stTurn);
  pstHarness->stInput.stRecord.stPcm.sztPcmReadSize = stTurn.u32Read;
  pstHarness->stOutput.stRecord.stPcm.sztPcmWriteSize = stTurn.u32Written;
  if ((pstHarness->stKind.u32Flags & ZE_KEST_MODULE_FORWARDS_METADATA) == 0) {
    MoveMetadata(pstHarness, stTurn.u32Read);
  }
  ReleaseAndCommit(pstHarness, &stTurn);
  if (bEnded && pstHarness->stKind.pfnPending != NULL) {
    stTurn.u32Pending = pstHarness->stKind.pfnPending(pstHarness->pvSelf);
  }
  if (pstTurn != NULL) *pstTurn = stTurn;
  return stTurn.u32Faults;
}
