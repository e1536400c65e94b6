/* SPDX-License-Identifier: Apache-2.0 */
#include "harness/harness_port.h"

#include <string.h>

#define UNWRITTEN_BYTES 8

static const uint32_t kFirstOfGroup[ZE_KEST_PCM_GROUPS] = {0, 2, 12};

static uint32_t Smaller(uint32_t u32A, uint32_t u32B) {
  return u32A < u32B ? u32A : u32B;
}

void ChannelsOfGroups(uint32_t u32Channels, uint32_t *au32Count) {
  const int bOnlyFirst = u32Channels <= 2, bOnlySecond = !bOnlyFirst && u32Channels <= 10;
  au32Count[0] = bOnlySecond ? 0 : Smaller(u32Channels, 2);
  au32Count[1] = Smaller(u32Channels - au32Count[0], 10);
  au32Count[2] = u32Channels - au32Count[0] - au32Count[1];
}

static void DescribeGroup(ZE_KEST_PcmGroup_s *pst, int32_t s32Group, uint32_t u32Count) {
  pst->ePcmGroupType = u32Count > 0 ? s32Group : -1;
  pst->u32ChannelCount = u32Count;
  for (uint32_t i = 0; i < ZE_KEST_PCM_GROUP_SLOTS; ++i) {
    pst->as32ChMap[i] = i < u32Count ? (int32_t)(kFirstOfGroup[s32Group] + i) : -1;
  }
}

static int MakePcm(HarnessPort_s *pst, const ZE_KEST_HarnessSetup_s *pstSetup, uint32_t u32Samples) {
  ZE_KEST_PcmBuffer_s *pstPcm = &pst->stRecord.stPcm;
  uint32_t au32Count[ZE_KEST_PCM_GROUPS];
  ChannelsOfGroups(pstSetup->u32Channels, au32Count);
  pstPcm->sztPcmRingSamples = u32Samples;
  pstPcm->sztPcmSpace = u32Samples;
  pstPcm->stPcmInfo =
      (ZE_KEST_PcmInfo_s){pstSetup->u32Channels, pstSetup->u32SampleRate, pstSetup->u32BitWidth, {0}};
  pstPcm->u32PcmGroupNum = ZE_KEST_PCM_GROUPS;
  for (int32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
    const size_t sztBytes = (size_t)au32Count[g] * u32Samples * (pstSetup->u32BitWidth / 8);
    if (sztBytes > UINT32_MAX || !GuardedMake(&pst->astGroup[g], sztBytes, pstSetup->eGuard, pst->u8Marker))
      return 0;
    pstPcm->apu8PcmGroupBuf[g] = pst->astGroup[g].pu8Data;
    pstPcm->asztPcmAllocSize[g] = (uint32_t)sztBytes;
    DescribeGroup(&pstPcm->astPcmGroup[g], g, au32Count[g]);
  }
  return 1;
}

int HarnessPortMake(HarnessPort_s *pst, const ZE_KEST_HarnessSetup_s *pstSetup, uint32_t u32Samples,
                    uint32_t u32Blocks) {
  const uint32_t u32Bytes = u32Blocks * METADATA_BLOCK_SIZE;
  memset(pst, 0, sizeof(*pst));
  pst->u8Marker = pstSetup->u8Marker;
  pst->stRecord.bConnected = 1;
  if (!MakePcm(pst, pstSetup, u32Samples)) return 0;
  if (!GuardedMake(&pst->stMeta, u32Bytes, pstSetup->eGuard, pst->u8Marker)) return 0;
  pst->stRecord.stMeta.pu8Buf = pst->stMeta.pu8Data;
  pst->stRecord.stMeta.sztSize = u32Bytes;
  pst->stRecord.stMeta.sztSpace = u32Bytes;
  return 1;
}

void HarnessPortFree(HarnessPort_s *pst) {
  for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g)
    GuardedFree(&pst->astGroup[g]);
  GuardedFree(&pst->stMeta);
}

void HarnessPortPlace(HarnessPort_s *pst, uint32_t u32Offset) {
  ZE_KEST_PcmBuffer_s *pstPcm = &pst->stRecord.stPcm;
  if (pstPcm->sztPcmLevel == 0) pstPcm->sztPcmReadOffset = u32Offset % pstPcm->sztPcmRingSamples;
}

/* ---- Data in and out ---- */

static uint32_t BytesPerSample(const HarnessPort_s *pst) {
  return pst->stRecord.stPcm.stPcmInfo.u32BitWidth / 8;
}

/* The first sample of a channel's ring; NULL when it has none. u32Channel: counted through the groups. */
static uint8_t *RingOf(const HarnessPort_s *pst, uint32_t u32Channel) {
  const ZE_KEST_PcmBuffer_s *pstPcm = &pst->stRecord.stPcm;
  for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
    const uint32_t u32Count =
        (uint32_t)(pst->astGroup[g].sztBytes / pstPcm->sztPcmRingSamples / BytesPerSample(pst));
    if (u32Channel < u32Count) {
      return pst->astGroup[g].pu8Data + (size_t)u32Channel * pstPcm->sztPcmRingSamples * BytesPerSample(pst);
    }
    u32Channel -= u32Count;
  }
  return NULL;
}

static void Store(uint8_t *pu8Ring, uint32_t u32Index, uint32_t u32Bytes, int32_t s32Sample) {
  const int16_t s16Sample = (int16_t)s32Sample;
  if (u32Bytes == 2) {
    memcpy(pu8Ring + (size_t)u32Index * 2, &s16Sample, 2);
  } else {
    memcpy(pu8Ring + (size_t)u32Index * 4, &s32Sample, 4);
  }
}

static int32_t Load(const uint8_t *pu8Ring, uint32_t u32Index, uint32_t u32Bytes) {
  int16_t s16Sample = 0;
  int32_t s32Sample = 0;
  if (u32Bytes == 2) {
    memcpy(&s16Sample, pu8Ring + (size_t)u32Index * 2, 2);
    return s16Sample;
  }
  memcpy(&s32Sample, pu8Ring + (size_t)u32Index * 4, 4);
  return s32Sample;
}

static uint32_t Wrapped(uint64_t u64Position, uint32_t u32Size) {
  return (uint32_t)(u64Position % u32Size);
}

void HarnessPortPut(HarnessPort_s *pst, const int32_t *ps32Frames, uint32_t u32Frames) {
  const ZE_KEST_PcmBuffer_s *pstPcm = &pst->stRecord.stPcm;
  const uint32_t u32Channels = pstPcm->stPcmInfo.u32TotalChannels;
  const uint64_t u64Begin = (uint64_t)pstPcm->sztPcmReadOffset + pstPcm->sztPcmLevel;
  for (uint32_t c = 0; c < u32Channels; ++c) {
    uint8_t *pu8Ring = RingOf(pst, c);
    for (uint32_t i = 0; i < u32Frames; ++i) {
      Store(pu8Ring, Wrapped(u64Begin + i, pstPcm->sztPcmRingSamples), BytesPerSample(pst),
            ps32Frames == NULL ? 0 : ps32Frames[(size_t)i * u32Channels + c]);
    }
  }
  HarnessPortCommit(pst, u32Frames, 0);
}

void HarnessPortGet(HarnessPort_s *pst, int32_t *ps32Frames, uint32_t u32Frames) {
  const ZE_KEST_PcmBuffer_s *pstPcm = &pst->stRecord.stPcm;
  const uint32_t u32Channels = pstPcm->stPcmInfo.u32TotalChannels;
  for (uint32_t c = 0; ps32Frames != NULL && c < u32Channels; ++c) {
    const uint8_t *pu8Ring = RingOf(pst, c);
    for (uint32_t i = 0; i < u32Frames; ++i) {
      const uint32_t u32Index = Wrapped((uint64_t)pstPcm->sztPcmReadOffset + i, pstPcm->sztPcmRingSamples);
      ps32Frames[(size_t)i * u32Channels + c] = Load(pu8Ring, u32Index, BytesPerSample(pst));
    }
  }
  HarnessPortRelease(pst, u32Frames, 0);
}

void HarnessPortPutBlock(HarnessPort_s *pst, const uint8_t *pu8Block) {
  const ZE_KEST_DataBuffer_s *pstMeta = &pst->stRecord.stMeta;
  memcpy(pstMeta->pu8Buf + Wrapped((uint64_t)pstMeta->sztReadOffset + pstMeta->sztLevel, pstMeta->sztSize),
         pu8Block, METADATA_BLOCK_SIZE);
  HarnessPortCommit(pst, 0, METADATA_BLOCK_SIZE);
}

void HarnessPortGetBlock(HarnessPort_s *pst, uint8_t *pu8Block) {
  memcpy(pu8Block, pst->stRecord.stMeta.pu8Buf + pst->stRecord.stMeta.sztReadOffset, METADATA_BLOCK_SIZE);
  HarnessPortRelease(pst, 0, METADATA_BLOCK_SIZE);
}

/* ---- Before and after a turn ---- */

void HarnessPortRemember(HarnessPort_s *pst) {
  pst->stBefore = pst->stRecord;
  for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g)
    GuardedRemember(&pst->astGroup[g]);
  GuardedRemember(&pst->stMeta);
}

/* Whether a ring differs from its copy outside the u32Written bytes from u32Begin on. All in bytes. */
static int RingChanged(const uint8_t *pu8Ring, const uint8_t *pu8Copy, uint32_t u32Ring, uint32_t u32Begin,
                       uint32_t u32Written) {
  const uint32_t u32From = Wrapped((uint64_t)u32Begin + u32Written, u32Ring);
  const uint32_t u32Rest = u32Ring - u32Written;
  const uint32_t u32First = Smaller(u32Rest, u32Ring - u32From);
  return memcmp(pu8Ring + u32From, pu8Copy + u32From, u32First) != 0 ||
         memcmp(pu8Ring, pu8Copy, u32Rest - u32First) != 0;
}

int HarnessPortChanged(const HarnessPort_s *pst, uint32_t u32Samples, uint32_t u32MetaBytes) {
  const ZE_KEST_PcmBuffer_s *pstPcm = &pst->stBefore.stPcm;
  const ZE_KEST_DataBuffer_s *pstMeta = &pst->stBefore.stMeta;
  const uint32_t u32Bytes = BytesPerSample(pst), u32Ring = pstPcm->sztPcmRingSamples * u32Bytes;
  const uint32_t u32Begin =
      Wrapped((uint64_t)pstPcm->sztPcmReadOffset + pstPcm->sztPcmLevel, pstPcm->sztPcmRingSamples) * u32Bytes;
  for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
    const Guarded_s *pstGroup = &pst->astGroup[g];
    for (size_t szt = 0; szt < pstGroup->sztBytes; szt += u32Ring) {
      if (RingChanged(pstGroup->pu8Data + szt, pstGroup->pu8Copy + szt, u32Ring, u32Begin,
                      u32Samples * u32Bytes))
        return 1;
    }
  }
  if (pstMeta->sztSize == 0) return 0;
  const uint32_t u32MetaBegin =
      Wrapped((uint64_t)pstMeta->sztReadOffset + pstMeta->sztLevel, pstMeta->sztSize);
  return RingChanged(pst->stMeta.pu8Data, pst->stMeta.pu8Copy, pstMeta->sztSize, u32MetaBegin, u32MetaBytes);
}

static int HasUnwrittenRun(const HarnessPort_s *pst, const uint8_t *pu8Ring, uint32_t u32Samples) {
  const ZE_KEST_PcmBuffer_s *pstPcm = &pst->stBefore.stPcm;
  const uint32_t u32Bytes = BytesPerSample(pst), u32Ring = pstPcm->sztPcmRingSamples * u32Bytes;
  const uint64_t u64Begin = ((uint64_t)pstPcm->sztPcmReadOffset + pstPcm->sztPcmLevel) * u32Bytes;
  uint32_t u32Run = 0;
  for (uint32_t i = 0; i < u32Samples * u32Bytes; ++i) {
    u32Run = pu8Ring[Wrapped(u64Begin + i, u32Ring)] == pst->u8Marker ? u32Run + 1 : 0;
    if (u32Run >= UNWRITTEN_BYTES) return 1;
  }
  return 0;
}

int HarnessPortUnwritten(const HarnessPort_s *pst, uint32_t u32Samples) {
  if (pst->u8Marker == 0) return 0; /* silence */
  for (uint32_t c = 0; c < pst->stBefore.stPcm.stPcmInfo.u32TotalChannels; ++c) {
    if (HasUnwrittenRun(pst, RingOf(pst, c), u32Samples)) return 1;
  }
  return 0;
}

void HarnessPortCommit(HarnessPort_s *pst, uint32_t u32Samples, uint32_t u32MetaBytes) {
  ZE_KEST_PcmBuffer_s *pstPcm = &pst->stRecord.stPcm;
  ZE_KEST_DataBuffer_s *pstMeta = &pst->stRecord.stMeta;
  pstPcm->sztPcmLevel += u32Samples;
  pstPcm->sztPcmSpace -= u32Samples;
  pstPcm->sztPcmWriteSize = 0;
  pstMeta->sztLevel += u32MetaBytes;
  pstMeta->sztSpace -= u32MetaBytes;
  pstMeta->sztWriteSize = 0;
}

/* What is released holds the marker again. */
static void MarkReleased(HarnessPort_s *pst, uint32_t u32Samples) {
  const ZE_KEST_PcmBuffer_s *pstPcm = &pst->stRecord.stPcm;
  const size_t sztBytes = BytesPerSample(pst);
  const uint32_t u32First = Smaller(u32Samples, pstPcm->sztPcmRingSamples - pstPcm->sztPcmReadOffset);
  for (uint32_t c = 0; c < pstPcm->stPcmInfo.u32TotalChannels; ++c) {
    uint8_t *pu8Ring = RingOf(pst, c);
    memset(pu8Ring + pstPcm->sztPcmReadOffset * sztBytes, pst->u8Marker, u32First * sztBytes);
    memset(pu8Ring, pst->u8Marker, (u32Samples - u32First) * sztBytes);
  }
}

void HarnessPortRelease(HarnessPort_s *pst, uint32_t u32Samples, uint32_t u32MetaBytes) {
  ZE_KEST_PcmBuffer_s *pstPcm = &pst->stRecord.stPcm;
  ZE_KEST_DataBuffer_s *pstMeta = &pst->stRecord.stMeta;
  MarkReleased(pst, u32Samples);
  pstPcm->sztPcmReadOffset =
      Wrapped((uint64_t)pstPcm->sztPcmReadOffset + u32Samples, pstPcm->sztPcmRingSamples);
  pstPcm->sztPcmLevel -= u32Samples;
  pstPcm->sztPcmSpace += u32Samples;
  pstPcm->sztPcmReadSize = 0;
  if (pstMeta->sztSize == 0) return;
  pstMeta->sztReadOffset = Wrapped((uint64_t)pstMeta->sztReadOffset + u32MetaBytes, pstMeta->sztSize);
  pstMeta->sztLevel -= u32MetaBytes;
  pstMeta->sztSpace += u32MetaBytes;
  pstMeta->sztReadSize = 0;
}
