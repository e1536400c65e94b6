/* SPDX-License-Identifier: Apache-2.0
 *
 * Filters that are each broken in one way, and sound ones. A kind bears the name of its fault. Built with
 * FAULTY_FILE, the file as a whole is broken instead: see the end. */
#define _GNU_SOURCE
#include <fcntl.h>
#include <pthread.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <ze_kest/module.h>
#include <ze_kest/utility.h>
#if defined(__x86_64__)
#include <xmmintrin.h>
#else
#include <fenv.h>
#endif

/* clang-format off */
#define KINDS(X) \
  X(Sound) X(SoundDelay) X(SoundMetadata) X(MayDiffer) X(MayBlock) X(Leak) X(DestroyNeedsTurn) \
  X(FloatingPoint) X(Descriptor) X(SharedState) X(RefusesSilently) X(ConfigSilently) \
  X(UncheckedAllocation) X(FillsMemory) X(RefusesThree) X(StuckAtSeventeen) X(IgnoresWrap) X(WritesBehind) \
  X(WritesUnasked) X(ForgetsWhenStarved) X(LosesWhenFull) X(NeedsRoomForTwo) X(NeedsConnection) \
  X(LeavesLast) X(PendingForever) X(ChangesInput) X(ChangesRecord) X(ChangesOutput) \
  X(LeavesUnwritten) X(UsesUnheld) X(ReadsTooMuch) X(WritesTooMuch) X(MovesTooMuch) X(LosesFirst) \
  X(PendingTwice) X(Drifts) X(WrongLatency) X(TouchesMetadata) X(CorruptsBlock) X(LosesBlock) \
  X(AccountsForNoBlock) X(DropsWhenFull) X(OutOfStep) X(Differs) X(DependsOnSplits) X(WrapsAround) \
  X(CallsSystem) X(Allocates) X(Locks) X(Slow) X(NoUnit) X(WrongDefault) X(RoundsValue) \
  X(DividesByLeast) X(OddValueKills) X(RacesWithSet) X(TakesEveryCommand) X(LongCommandKills) \
  X(Hangs)
/* clang-format on */

#define NAME_OF(name) #name,
#define VALUE_OF(name) k##name,
static const char *const kNames[] = {KINDS(NAME_OF)};
enum Fault_e { KINDS(VALUE_OF) kFaultCount };

#define CHANNELS 22
#define DELAY 10
#define MOST_SAMPLES 2048

typedef struct Faulty_s {
  enum Fault_e eFault;
  uint32_t u32BitWidth, u32Delay, u32Pending, u32Turns, u32MetaRemainder;
  int bStuck, bHasRead;
  uint64_t u64Read;
  uint32_t *pu32Early; /* set by the first turn where a fault says so */
  _Atomic int32_t s32Gain;
  pthread_t stSetter;
  int bHasSetter;
  int32_t as32Line[CHANNELS][DELAY];
  uint32_t u32Place;
  int32_t as32Previous[CHANNELS];
  int32_t as32Work[CHANNELS][MOST_SAMPLES + 1];
} Faulty_s;

static uint32_t s_u32Creates;
static uint32_t s_u32Turned;
static int32_t s_s32Shared;
static pthread_mutex_t s_stMutex = PTHREAD_MUTEX_INITIALIZER;
static volatile uint32_t s_u32Sink;

static uint32_t Smaller(uint32_t u32A, uint32_t u32B) {
  return u32A < u32B ? u32A : u32B;
}

/* ---- Samples ---- */

static int32_t Limited(int64_t s64Value, uint32_t u32Bits) {
  const int64_t s64Most = u32Bits == 16 ? INT16_MAX : INT32_MAX;
  return (int32_t)(s64Value > s64Most ? s64Most : s64Value < -s64Most - 1 ? -s64Most - 1 : s64Value);
}

static int32_t Amplified(const Faulty_s *pst, int32_t s32Sample) {
  const int64_t s64Value = (int64_t)s32Sample * pst->s32Gain / 100;
  if (pst->eFault != kWrapsAround) return Limited(s64Value, pst->u32BitWidth);
  return pst->u32BitWidth == 16 ? (int16_t)s64Value : (int32_t)s64Value;
}

static int32_t SampleAt(const Faulty_s *pst, const void *pvRing, uint32_t i) {
  return pst->u32BitWidth == 16 ? ((const int16_t *)pvRing)[i] : ((const int32_t *)pvRing)[i];
}

/* One channel: amplified, delayed, and with what some faults add. pvIn: NULL for silence. */
static void Work(Faulty_s *pst, uint32_t u32Channel, const void *pvIn, uint32_t u32Samples) {
  uint32_t u32Place = pst->u32Place;
  for (uint32_t i = 0; i < u32Samples; ++i) {
    int32_t s32Sample = pvIn == NULL ? 0 : Amplified(pst, SampleAt(pst, pvIn, i));
    if (pst->u32Delay > 0) {
      const int32_t s32Old = pst->as32Line[u32Channel][u32Place];
      pst->as32Line[u32Channel][u32Place] = s32Sample;
      u32Place = (u32Place + 1) % pst->u32Delay;
      s32Sample = s32Old;
    }
    if (pst->eFault == kForgetsWhenStarved) {
      const int32_t s32Now = s32Sample;
      s32Sample = s32Sample / 2 + pst->as32Previous[u32Channel] / 2;
      pst->as32Previous[u32Channel] = s32Now;
    }
    if (pst->eFault == kSharedState) s32Sample = s32Sample / 2 + (s_s32Shared += s32Sample / 1024) / 4;
    if (pst->eFault == kDiffers || pst->eFault == kMayDiffer)
      s32Sample = s32Sample / 2 + (int32_t)s_u32Creates;
    if (pst->eFault == kUsesUnheld && u32Channel == 0 && i == 0)
      s32Sample = s32Sample / 2 + pst->as32Previous[0];
    if (pst->eFault == kDependsOnSplits && i == 0) s32Sample = s32Sample / 2 + 1;
    pst->as32Work[u32Channel][i] = s32Sample;
  }
}

static void Narrow(int32_t *ps32, uint32_t u32Samples) {
  int16_t *ps16 = (int16_t *)ps32;
  for (uint32_t i = 0; i < u32Samples; ++i)
    ps16[i] = (int16_t)ps32[i];
}

/* ---- A turn ---- */

static uint32_t SamplesToMove(const Faulty_s *pst, const ZE_KEST_Filter_s *pstFilter) {
  const ZE_KEST_PcmBuffer_s *pstIn = &pstFilter->apstInPort[0]->stPcm;
  const ZE_KEST_PcmBuffer_s *pstOut = &pstFilter->apstOutPort[0]->stPcm;
  uint32_t u32Held = 0, u32Room = 0;
  ze_kest_Utility_CalculateInputPortPcmProcessSize(pstFilter, &u32Held);
  ze_kest_Utility_CalculateOutputPortPcmProcessSize(pstFilter, &u32Room);
  if (pst->eFault == kMovesTooMuch) u32Held = pstIn->sztPcmLevel, u32Room = pstOut->sztPcmSpace;
  if (pst->eFault != kIgnoresWrap)
    u32Held = Smaller(u32Held, pstIn->sztPcmRingSamples - pstIn->sztPcmReadOffset);
  return Smaller(u32Held, u32Room);
}

static void Move(Faulty_s *pst, ZE_KEST_Filter_s *pstFilter, uint32_t u32Read, uint32_t u32Written) {
  int16_t *ap16[ZE_KEST_PCM_CHANNEL_ENTRIES] = {NULL};
  int32_t *ap32[ZE_KEST_PCM_CHANNEL_ENTRIES] = {NULL};
  uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES] = {0};
  uint8_t bPresent = 0;
  uint32_t u32Channel = 0;
  const int bNarrow = pst->u32BitWidth == 16;
  const uint32_t u32Most = u32Read > u32Written ? u32Read : u32Written;
  if (bNarrow) {
    ze_kest_Utility_AnalyzeInputPort16BitPcmGroup(pstFilter, 0, ap16, au16Stride, &bPresent);
  } else {
    ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(pstFilter, 0, ap32, au16Stride, &bPresent);
  }
  for (uint32_t i = 0; i < ZE_KEST_PCM_CHANNEL_ENTRIES; ++i) {
    const void *pvIn = bNarrow ? (const void *)ap16[i] : (const void *)ap32[i];
    au16Stride[i] = 1;
    if (pvIn == NULL) continue;
    Work(pst, u32Channel, u32Read > 0 ? pvIn : NULL, u32Most);
    if (bNarrow) Narrow(pst->as32Work[u32Channel], u32Most);
    ap16[i] = (int16_t *)pst->as32Work[u32Channel];
    ap32[i] = pst->as32Work[u32Channel];
    ++u32Channel;
  }
  if (pst->u32Delay > 0) pst->u32Place = (pst->u32Place + u32Most) % pst->u32Delay;
  const uint32_t u32Stored = pst->eFault == kLeavesUnwritten && u32Written > 1 ? u32Written - 1 : u32Written;
  if (bNarrow) {
    ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(pstFilter, u32Stored, ap16, au16Stride);
  } else {
    ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(pstFilter, u32Stored, ap32, au16Stride);
  }
}

static void MoveMetadata(Faulty_s *pst, ZE_KEST_Filter_s *pstFilter, uint32_t u32Read, uint32_t bEnded) {
  ZE_KEST_DataBuffer_s *pstIn = &pstFilter->apstInPort[0]->stMeta,
                       *pstOut = &pstFilter->apstOutPort[0]->stMeta;
  if (pstIn->sztSize == 0) return;
  const uint32_t u32Due = (pst->u32MetaRemainder + u32Read) / ZE_KEST_METADATA_SAMPLES;
  const uint32_t u32Room = pst->eFault == kDropsWhenFull ? pstIn->sztLevel : pstOut->sztSpace;
  uint32_t u32Bytes = ze_kest_Utility_QueryInputMinMetaProcessSize(
      pstFilter, u32Read, Smaller(pstIn->sztLevel, u32Room), &pst->u32MetaRemainder);
  pst->u32MetaRemainder += (u32Due - u32Bytes / 32) * ZE_KEST_METADATA_SAMPLES;
  if (pst->eFault == kOutOfStep) u32Bytes = bEnded ? Smaller(pstIn->sztLevel, pstOut->sztSpace) : 0;
  uint32_t u32Written = Smaller(u32Bytes, pstOut->sztSpace);
  const uint32_t u32Number = pstIn->sztTotalRead / 32;
  if (pst->eFault == kLosesBlock && u32Bytes > 0 && u32Number % 4 == 3) u32Written = 0;
  ze_kest_Utility_WriteAllOutputPortMetadataBuffer(pstFilter, 0, u32Written);
  if (pst->eFault == kCorruptsBlock && u32Written > 0) {
    pstOut->pu8Buf[(pstOut->sztReadOffset + pstOut->sztLevel + 30) % pstOut->sztSize] ^= 1;
  }
  ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(pstFilter, u32Written);
  if (pst->eFault == kAccountsForNoBlock && u32Bytes == pstIn->sztLevel && u32Bytes > 0) u32Bytes += 32;
  ze_kest_Utility_UpdateAllInputPortMetadataReadSize(pstFilter, u32Bytes);
}

static void Spin(uint32_t u32Rounds) {
  for (uint32_t i = 0; i < u32Rounds; ++i)
    s_u32Sink = i;
}

/* Waits for another thread's pfnSet, and dies of it. */
static void WaitForSet(const Faulty_s *pst) {
  const int32_t s32Before = pst->s32Gain;
  if (!pst->bHasSetter || pthread_equal(pst->stSetter, pthread_self())) return;
  for (uint32_t i = 0; i < 10000; ++i) {
    if (pst->s32Gain != s32Before) abort();
    usleep(1000);
  }
}

/* What faults do before a turn, whether there is something to move or not. */
static void BeforeTurn(Faulty_s *pst, ZE_KEST_Filter_s *pstFilter) {
  const ZE_KEST_PcmBuffer_s *pstIn = &pstFilter->apstInPort[0]->stPcm;
  ++pst->u32Turns;
  if (pst->eFault == kDestroyNeedsTurn && pst->pu32Early == NULL) pst->pu32Early = &s_u32Turned;
  if (pst->eFault == kForgetsWhenStarved && pstIn->sztPcmLevel == 0) {
    memset(pst->as32Previous, 0, sizeof(pst->as32Previous));
  }
  if (pst->eFault == kNeedsConnection && !pstFilter->apstOutPort[0]->bConnected) abort();
  if (pst->eFault == kStuckAtSeventeen && pst->u64Read == 0 && pstIn->sztPcmLevel == 17) pst->bStuck = 1;
  if (pst->eFault == kCallsSystem) syscall(SYS_gettid);
  if (pst->eFault == kAllocates || pst->eFault == kMayBlock) {
    void *volatile pv = malloc(24);
    free(pv);
  }
  if (pst->eFault == kLocks || pst->eFault == kMayBlock) {
    pthread_mutex_lock(&s_stMutex);
    pthread_mutex_unlock(&s_stMutex);
  }
  if (pst->eFault == kMayBlock) usleep(0);
  if (pst->eFault == kSlow && pst->u32Turns == 300) Spin(100u * 1000 * 1000);
  if (pst->eFault == kDividesByLeast && pst->s32Gain == 0) abort();
  if (pst->eFault == kOddValueKills && pst->s32Gain % 2 != 0) abort();
  if (pst->eFault == kRacesWithSet) WaitForSet(pst);
  while (pst->eFault == kHangs)
    Spin(1000);
#if defined(__x86_64__)
  if (pst->eFault == kFloatingPoint) _mm_setcsr(_mm_getcsr() | 0x8000);
#else
  if (pst->eFault == kFloatingPoint) fesetround(FE_UPWARD);
#endif
}

/* What faults do to the records and rings. */
static void Damage(Faulty_s *pst, ZE_KEST_Filter_s *pstFilter, uint32_t u32Samples) {
  ZE_KEST_PcmBuffer_s *pstIn = &pstFilter->apstInPort[0]->stPcm, *pstOut = &pstFilter->apstOutPort[0]->stPcm;
  const uint32_t g =
      pstIn->stPcmInfo.u32TotalChannels >= 3 && pstIn->stPcmInfo.u32TotalChannels <= 10 ? 1 : 0;
  const uint32_t u32Bytes = pst->u32BitWidth / 8;
  const uint32_t u32Next =
      (pstOut->sztPcmReadOffset + pstOut->sztPcmLevel + u32Samples) % pstOut->sztPcmRingSamples;
  const uint32_t u32Unheld = (pstIn->sztPcmReadOffset + pstIn->sztPcmLevel) % pstIn->sztPcmRingSamples;
  if (pst->eFault == kChangesRecord) ++pstFilter->apstInPort[0]->au32Reserved[1];
  if (pst->eFault == kChangesOutput) pstOut->apu8PcmGroupBuf[g][u32Next * u32Bytes] ^= 1;
  if (pst->eFault == kWritesBehind) pstOut->apu8PcmGroupBuf[g][pstOut->asztPcmAllocSize[g]] ^= 1;
  if (pst->eFault == kUsesUnheld && pstIn->sztPcmSpace > 0) {
    pst->as32Previous[0] = pstIn->apu8PcmGroupBuf[g][u32Unheld * u32Bytes];
  }
  if (pst->eFault == kTouchesMetadata && pstFilter->apstInPort[0]->stMeta.sztLevel > 0) {
    ze_kest_Utility_UpdateAllInputPortMetadataReadSize(pstFilter, 32);
  }
}

static void ChangeInput(const ZE_KEST_PcmBuffer_s *pstIn) {
  const uint32_t u32Byte = pstIn->sztPcmReadOffset * (pstIn->stPcmInfo.u32BitWidth / 8);
  for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
    if (pstIn->apu8PcmGroupBuf[g] != NULL) pstIn->apu8PcmGroupBuf[g][u32Byte] ^= 1;
  }
}

static uint32_t Pause(const Faulty_s *pst, const ZE_KEST_Filter_s *pstFilter, uint32_t u32Samples,
                      uint32_t bEnded) {
  if (pst->eFault == kNeedsRoomForTwo && pstFilter->apstOutPort[0]->stPcm.sztPcmSpace < 2) return 1;
  if (pst->eFault == kLeavesLast && bEnded && pstFilter->apstInPort[0]->stPcm.sztPcmLevel == 1) return 1;
  return (uint32_t)pst->bStuck || u32Samples == 0;
}

static uint32_t WrittenOf(Faulty_s *pst, const ZE_KEST_Filter_s *pstFilter, uint32_t u32Read) {
  const uint64_t u64Before = pst->u64Read;
  pst->u64Read += u32Read;
  if (pst->eFault == kLosesFirst && u64Before == 0) return u32Read - 1;
  const int bExtra = pst->eFault == kDrifts && u64Before / 8192 != pst->u64Read / 8192;
  return bExtra && pstFilter->apstOutPort[0]->stPcm.sztPcmSpace > u32Read ? u32Read - 1 : u32Read;
}

static void AccountFor(const Faulty_s *pst, ZE_KEST_Filter_s *pstFilter, uint32_t u32Read,
                       uint32_t u32Written) {
  const uint32_t u32Level = pstFilter->apstInPort[0]->stPcm.sztPcmLevel;
  const int bMore = pst->eFault == kReadsTooMuch && u32Read == u32Level && u32Read < 256;
  ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(pstFilter, u32Written);
  ze_kest_Utility_UpdateAllInputPortPcmReadSize(pstFilter, bMore ? u32Read + 1 : u32Read);
}

static void AtTheEnd(Faulty_s *pst, ZE_KEST_Filter_s *pstFilter) {
  uint32_t u32Room = 0;
  ze_kest_Utility_CalculateOutputPortPcmProcessSize(pstFilter, &u32Room);
  const uint32_t u32Rest = Smaller(pst->u32Pending, u32Room);
  if (u32Rest == 0) return;
  Move(pst, pstFilter, 0, u32Rest);
  pst->u32Pending -= u32Rest;
  ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(pstFilter, u32Rest);
}

static void Process(void *pvSelf, ZE_KEST_Filter_s *pstFilter, uint32_t bEnded) {
  Faulty_s *pst = pvSelf;
  const ZE_KEST_PcmBuffer_s *pstIn = &pstFilter->apstInPort[0]->stPcm,
                            *pstOut = &pstFilter->apstOutPort[0]->stPcm;
  BeforeTurn(pst, pstFilter);
  uint32_t u32Read = SamplesToMove(pst, pstFilter);
  if (pst->eFault == kWritesTooMuch && pstOut->sztPcmSpace == 0) AccountFor(pst, pstFilter, 0, 1);
  if (pst->eFault == kWritesUnasked && pstIn->sztPcmLevel == 0 && !bEnded && pstOut->sztPcmSpace > 0) {
    Move(pst, pstFilter, 0, 1);
    AccountFor(pst, pstFilter, 0, 1);
  }
  if (Pause(pst, pstFilter, u32Read, bEnded)) {
    if (bEnded && pstIn->sztPcmLevel == 0) AtTheEnd(pst, pstFilter);
    if (pst->eFault == kOutOfStep) MoveMetadata(pst, pstFilter, 0, bEnded);
    return;
  }
  uint32_t u32Written = WrittenOf(pst, pstFilter, u32Read);
  Damage(pst, pstFilter, u32Written);
  Move(pst, pstFilter, u32Read, u32Written);
  if (pst->eFault == kChangesInput) ChangeInput(pstIn);
  if (pst->eFault == kLosesWhenFull && u32Read == pstOut->sztPcmSpace && pstIn->sztPcmLevel > u32Read)
    ++u32Read;
  AccountFor(pst, pstFilter, u32Read, u32Written);
  if (pst->eFault == kSoundMetadata || (pst->eFault >= kCorruptsBlock && pst->eFault <= kOutOfStep)) {
    MoveMetadata(pst, pstFilter, u32Read, bEnded);
  }
  pst->bHasRead = 1;
}

/* ---- The other entries ---- */

static uint32_t Latency(void *pvSelf) {
  const Faulty_s *pst = pvSelf;
  return pst->eFault == kWrongLatency ? pst->u32Delay + 3 : pst->u32Delay;
}

static uint32_t Pending(void *pvSelf) {
  const Faulty_s *pst = pvSelf;
  if (pst->eFault == kPendingForever && !pst->bHasRead) return 1;
  return pst->eFault == kPendingTwice ? 2 * pst->u32Pending : pst->u32Pending;
}

static ZE_KEST_ModuleParameter_s s_stGain = {sizeof(s_stGain), 0, "Gain", "", "%", 0, 0, 200, 100};
static ZE_KEST_ModuleParameter_s s_stWideGain = {sizeof(s_stGain), 0, "Gain", "", "%", 0, 0, 1000000000, 100};
static ZE_KEST_ModuleParameter_s s_stNoUnit = {sizeof(s_stGain), 0, "Gain", "", NULL, 0, 0, 200, 100};

static const ZE_KEST_ModuleParameter_s *Parameter(void *pvSelf, uint32_t u32Index) {
  const Faulty_s *pst = pvSelf;
  if (u32Index > 0) return NULL;
  if (pst->eFault == kDividesByLeast) return &s_stWideGain;
  return pst->eFault == kNoUnit ? &s_stNoUnit : &s_stGain;
}

static int32_t Get(void *pvSelf, uint32_t u32Index) {
  const Faulty_s *pst = pvSelf;
  (void)u32Index;
  return pst->s32Gain;
}

static void Set(void *pvSelf, uint32_t u32Index, int32_t s32Value) {
  Faulty_s *pst = pvSelf;
  (void)u32Index;
  pst->stSetter = pthread_self();
  pst->bHasSetter = pst->eFault == kRacesWithSet;
  pst->s32Gain = pst->eFault == kRoundsValue ? s32Value / 3 * 3 + 1 : s32Value;
}

static uint32_t Command(void *pvSelf, const char *pszCommand) {
  const Faulty_s *pst = pvSelf;
  if (pst->eFault == kLongCommandKills && strlen(pszCommand) > 1000) abort();
  return pst->eFault == kTakesEveryCommand ? ZE_KEST_OK : ZE_KEST_INVALID_ARGUMENT;
}

static void Destroy(void *pvSelf) {
  Faulty_s *pst = pvSelf;
  if (pst->eFault == kDestroyNeedsTurn) *pst->pu32Early = 1;
  s_s32Shared = 0;
  free(pst);
}

/* Whether an instance can be had; with a text unless the fault is that there is none. */
static uint32_t Accepts(enum Fault_e eFault, const ZE_KEST_ModuleSetup_s *pstSetup) {
  const char *pszText = "";
  if (eFault == kRefusesThree && pstSetup->stPcmInfo.u32TotalChannels == 3) pszText = "not with three";
  const int bSilent = (eFault == kRefusesSilently && pstSetup->stPcmInfo.u32SampleRate == 8000) ||
                      (eFault == kConfigSilently && strlen(pstSetup->pszConfig) > 1000);
  snprintf(pstSetup->pszError, pstSetup->u32ErrorSize, "%s", pszText);
  return bSilent || pszText[0] != '\0' ? ZE_KEST_FAILED : ZE_KEST_OK;
}

static enum Fault_e FaultOf(const char *pszName) {
  uint32_t i = 0;
  while (strcmp(kNames[i], pszName) != 0)
    ++i;
  return (enum Fault_e)i;
}

static void UseMemory(uint32_t u32Samples) {
  volatile uint8_t *pu8Buffer = calloc(u32Samples, 8);
  pu8Buffer[0] = 1;
  free((void *)pu8Buffer);
}

static uint32_t Create(const ZE_KEST_ModuleFilter_s *pstKind, const ZE_KEST_ModuleSetup_s *pstSetup,
                       void **ppvSelf) {
  const enum Fault_e eFault = FaultOf(pstKind->pszName);
  const uint32_t u32Result = Accepts(eFault, pstSetup);
  if (u32Result != ZE_KEST_OK) return u32Result;
  Faulty_s *pst = calloc(1, sizeof(*pst));
  if (pst == NULL && eFault != kUncheckedAllocation) {
    snprintf(pstSetup->pszError, pstSetup->u32ErrorSize, "memory is exhausted");
    return ZE_KEST_OUT_OF_MEMORY;
  }
  if (eFault == kFillsMemory) UseMemory(pstSetup->stPcmInfo.u32SampleRate);
  pst->eFault = eFault;
  pst->u32BitWidth = pstSetup->stPcmInfo.u32BitWidth;
  pst->u32Delay = eFault == kSoundDelay || eFault == kPendingTwice || eFault == kWrongLatency ? DELAY : 0;
  pst->u32Pending = pst->u32Delay;
  pst->s32Gain = eFault == kWrongDefault ? 99 : 100;
  if (eFault == kLeak) s_u32Sink = malloc(100) != NULL;
  if (eFault == kDescriptor && s_u32Creates == 0) s_u32Sink = (uint32_t)open("/dev/null", O_RDONLY);
  ++s_u32Creates;
  s_s32Shared = 0;
  *ppvSelf = pst;
  return ZE_KEST_OK;
}

/* ---- The module ---- */

static ZE_KEST_ModuleFilter_s s_astKinds[kFaultCount];

static void Describe(uint32_t i) {
  s_astKinds[i] = (ZE_KEST_ModuleFilter_s){.u32Size = sizeof(ZE_KEST_ModuleFilter_s),
                                           .u32FilterSize = sizeof(ZE_KEST_Filter_s),
                                           .u32PortSize = sizeof(ZE_KEST_Port_s),
                                           .pszName = kNames[i],
                                           .pszVersion = "1",
                                           .pszDescription = "",
                                           .u32Widths = ZE_KEST_MODULE_16_BITS | ZE_KEST_MODULE_32_BITS,
                                           .u32LeastChannels = 1,
                                           .u32MostChannels = CHANNELS,
                                           .pfnCreate = Create,
                                           .pfnDestroy = Destroy,
                                           .pfnProcess = Process,
                                           .pfnLatency = Latency,
                                           .pfnPending = Pending,
                                           .pfnParameter = Parameter,
                                           .pfnGet = Get,
                                           .pfnSet = Set,
                                           .pfnCommand = Command};
  const int bForwards = i == kSoundMetadata || (i >= kCorruptsBlock && i <= kOutOfStep);
  s_astKinds[i].u32Flags = (bForwards ? (uint32_t)ZE_KEST_MODULE_FORWARDS_METADATA : 0) |
                           (i == kMayDiffer ? (uint32_t)ZE_KEST_MODULE_MAY_DIFFER : 0) |
                           (i == kMayBlock ? (uint32_t)ZE_KEST_MODULE_MAY_BLOCK : 0);
}

/* How a whole file may be broken; a number given by the build. */
enum FaultyFile_e { kExports = 1, kEveryAbi, kNoEnd, kLeavesUmask, kSlowToLoad, kUnresolved, kKillsAtLoad };
#ifndef FAULTY_FILE
#define FAULTY_FILE 0
#endif

#if FAULTY_FILE == 1
ZE_KEST_API void a_second_export(void) {}
#elif FAULTY_FILE == 6
void is_defined_nowhere(void);
#endif

__attribute__((constructor)) static void OnLoad(void) {
  if (FAULTY_FILE == kLeavesUmask) umask(0777);
  if (FAULTY_FILE == kSlowToLoad) usleep(150000);
  if (FAULTY_FILE == kKillsAtLoad) abort();
#if FAULTY_FILE == 6
  is_defined_nowhere();
#endif
}

const ZE_KEST_ModuleFilter_s *ze_kest_module(uint32_t u32Abi, uint32_t u32Index) {
  const uint32_t u32Kinds = FAULTY_FILE == 0 ? kFaultCount : 1;
  if (u32Abi != ZE_KEST_MODULE_ABI && FAULTY_FILE != kEveryAbi) return NULL;
  if (FAULTY_FILE == kNoEnd && u32Index == u32Kinds + 1) return &s_astKinds[0];
  if (u32Index >= u32Kinds) return NULL;
  if (s_astKinds[u32Index].u32Size == 0) Describe(u32Index);
  return &s_astKinds[u32Index];
}
