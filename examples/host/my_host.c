/* SPDX-License-Identifier: Apache-2.0
 *
 * A small host: one pipeline, "Host", with the filters Tone (makes a sine), Gain and Meter (looks for the
 * peak), mono at 48 kHz and 16 bits. It plays to nobody, but everything of the debug layer works on it.
 *   my_host [SECONDS]    until then, or until SIGINT or SIGTERM */
#define _GNU_SOURCE
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
#include <ze_kest/debug.h>
#include <ze_kest/utility.h>

#define CYCLE_SAMPLES 256
#define RING_SAMPLES (2 * CYCLE_SAMPLES)
#define SAMPLE_RATE 48000
#define COMMAND_PIPE "/mnt/vendor/tmp/kest/D"

/* ---- The model: two ports, each the output of one filter and the input of the next ---- */

/* Group 0 can have two channels, and the debug functions take its storage to have rings for both. */
static int16_t s_aas16Storage[2][2 * RING_SAMPLES];
static ZE_KEST_Port_s s_astPort[2];
static ZE_KEST_Pipeline_s s_stPipeline = {.szName = "Host", .u8AutoConsume = 1};
static _Atomic int32_t s_s32GainDb; /* the command thread sets it */
static _Atomic int32_t s_s32Peak;

static uint32_t GetParameter(ZE_KEST_Filter_s *pstFilter, const char *pszName, void *pData, uint32_t u32Size);
static uint32_t SetParameter(ZE_KEST_Filter_s *pstFilter, const char *pszName, const void *pData,
                             uint32_t u32Size);

static ZE_KEST_Filter_s s_stTone = {.szName = "Tone", .u32OutPortCount = 1, .apstOutPort = {&s_astPort[0]}};
static ZE_KEST_Filter_s s_stGain = {.szName = "Gain",
                                    .u32InPortCount = 1,
                                    .u32OutPortCount = 1,
                                    .apstInPort = {&s_astPort[0]},
                                    .apstOutPort = {&s_astPort[1]},
                                    .pfnGetParameter = GetParameter,
                                    .pfnSetParameter = SetParameter};
static ZE_KEST_Filter_s s_stMeter = {.szName = "Meter", .u32InPortCount = 1, .apstInPort = {&s_astPort[1]}};
static ZE_KEST_Filter_s *const s_apstFilter[] = {&s_stTone, &s_stGain, &s_stMeter};
#define FILTERS (sizeof(s_apstFilter) / sizeof(s_apstFilter[0]))

static void LayOutPort(ZE_KEST_Port_s *pstPort, int16_t *ps16Storage) {
  ZE_KEST_PcmBuffer_s *pstPcm = &pstPort->stPcm;
  pstPort->bConnected = 1;
  pstPcm->apu8PcmGroupBuf[0] = (uint8_t *)ps16Storage;
  pstPcm->asztPcmAllocSize[0] = sizeof(s_aas16Storage[0]);
  pstPcm->sztPcmRingSamples = RING_SAMPLES;
  pstPcm->sztPcmSpace = RING_SAMPLES;
}

/* Announces the format, as each filter does to its outputs; the input that an output feeds is the same port.
 */
static void AnnounceFormat(ZE_KEST_Filter_s *pstFilter) {
  static const ZE_KEST_PcmInfo_s kInfo = {1, SAMPLE_RATE, 16, {0, 0}};
  ZE_KEST_PcmGroup_s astGroup[ZE_KEST_PCM_GROUPS];
  memset(astGroup, -1, sizeof(astGroup)); /* no group, no channel */
  for (uint32_t i = 0; i < ZE_KEST_PCM_GROUPS; ++i)
    astGroup[i].u32ChannelCount = 0;
  astGroup[0].ePcmGroupType = 0;
  astGroup[0].u32ChannelCount = 1;
  astGroup[0].as32ChMap[0] = 0;
  ze_kest_Utility_UpdatePcmInfoToAllOutputPort(pstFilter, &kInfo);
  ze_kest_Utility_UpdatePcmGroupToAllOutputPort(pstFilter, 0, astGroup);
}

static void LayOutPipeline(void) {
  for (size_t i = 0; i < 2; ++i)
    LayOutPort(&s_astPort[i], s_aas16Storage[i]);
  for (size_t i = 0; i < FILTERS; ++i) {
    s_apstFilter[i]->pstParentPipeline = &s_stPipeline;
    s_apstFilter[i]->sztMaxInPcmProcessSize = CYCLE_SAMPLES;
    s_apstFilter[i]->sztMaxOutPcmProcessSize = CYCLE_SAMPLES;
    AnnounceFormat(s_apstFilter[i]);
  }
}

/* ---- The filters' work: only through ze_kest/port.h ---- */

static void WriteMono(ZE_KEST_Filter_s *pstFilter, int16_t *ps16Samples, uint32_t u32Samples) {
  int16_t *aps16Source[ZE_KEST_PCM_CHANNEL_ENTRIES] = {ps16Samples};
  uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES] = {1};
  ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(pstFilter, u32Samples, aps16Source, au16Stride);
  ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(pstFilter, u32Samples);
}

static uint32_t ReadMono(ZE_KEST_Filter_s *pstFilter, int16_t *ps16Samples) {
  uint32_t u32Samples = 0;
  if (ze_kest_Utility_CalculateInputPortPcmProcessSize(pstFilter, &u32Samples) != ZE_KEST_OK) return 0;
  ze_kest_Utility_ReadInputPortPcmBuffer(pstFilter, 0, ps16Samples, u32Samples, 0, 0, 1);
  ze_kest_Utility_UpdateAllInputPortPcmReadSize(pstFilter, u32Samples);
  return u32Samples;
}

static void RunTone(ZE_KEST_Filter_s *pstFilter) {
  static uint32_t u32Position;
  int16_t as16Samples[CYCLE_SAMPLES];
  uint32_t u32Samples = 0;
  if (ze_kest_Utility_CalculateOutputPortPcmProcessSize(pstFilter, &u32Samples) != ZE_KEST_OK) return;
  for (uint32_t i = 0; i < u32Samples; ++i) {
    as16Samples[i] = (int16_t)(_as32KestSine1K48Mono[u32Position] / 65536);
    u32Position = (u32Position + 1) % ZE_KEST_SINE_SAMPLES;
  }
  WriteMono(pstFilter, as16Samples, u32Samples);
}

static void RunGain(ZE_KEST_Filter_s *pstFilter) {
  int16_t as16Samples[CYCLE_SAMPLES];
  const uint32_t u32Samples = ReadMono(pstFilter, as16Samples);
  const int64_t s64Gain = ze_kest_Utility_FixedPtDb(s_s32GainDb); /* unity is 1 << 23 */
  for (uint32_t i = 0; i < u32Samples; ++i)
    as16Samples[i] = (int16_t)(as16Samples[i] * s64Gain >> 23);
  if (u32Samples > 0) WriteMono(pstFilter, as16Samples, u32Samples);
}

static void RunMeter(ZE_KEST_Filter_s *pstFilter) {
  int16_t as16Samples[CYCLE_SAMPLES];
  const uint32_t u32Samples = ReadMono(pstFilter, as16Samples);
  int32_t s32Peak = 0;
  for (uint32_t i = 0; i < u32Samples; ++i) {
    if (abs(as16Samples[i]) > s32Peak) s32Peak = abs(as16Samples[i]);
  }
  s_s32Peak = s32Peak;
}

/* ---- The cycle ---- */

static void ReleaseRead(ZE_KEST_PcmBuffer_s *pstPcm) {
  pstPcm->sztPcmReadOffset = (pstPcm->sztPcmReadOffset + pstPcm->sztPcmReadSize) % pstPcm->sztPcmRingSamples;
  pstPcm->sztPcmLevel -= pstPcm->sztPcmReadSize;
  pstPcm->sztPcmSpace += pstPcm->sztPcmReadSize;
  pstPcm->sztPcmReadSize = 0;
}

static void CommitWritten(ZE_KEST_PcmBuffer_s *pstPcm) {
  pstPcm->sztPcmLevel += pstPcm->sztPcmWriteSize;
  pstPcm->sztPcmSpace -= pstPcm->sztPcmWriteSize;
  pstPcm->sztPcmWriteSize = 0;
}

static void RunTurn(ZE_KEST_Filter_s *pstFilter, void (*pfnRun)(ZE_KEST_Filter_s *pstFilter)) {
  ze_kest_Debug_MeasureLatency(pstFilter, ZE_KEST_LATENCY_START);
  pfnRun(pstFilter);
  ze_kest_Debug_Filter(
      pstFilter); /* looks at the read and write sizes, so it comes before they are cleared */
  for (uint32_t i = 0; i < pstFilter->u32InPortCount; ++i)
    ReleaseRead(&pstFilter->apstInPort[i]->stPcm);
  for (uint32_t i = 0; i < pstFilter->u32OutPortCount; ++i)
    CommitWritten(&pstFilter->apstOutPort[i]->stPcm);
}

static atomic_bool s_bStop;

static void RunCycles(void) {
  struct timespec stNext;
  clock_gettime(CLOCK_MONOTONIC, &stNext);
  while (!s_bStop) {
    RunTurn(&s_stTone, RunTone);
    RunTurn(&s_stGain, RunGain);
    RunTurn(&s_stMeter, RunMeter);
    stNext.tv_nsec += (long)(CYCLE_SAMPLES * 1000000000LL / SAMPLE_RATE);
    if (stNext.tv_nsec >= 1000000000L) {
      stNext.tv_nsec -= 1000000000L;
      ++stNext.tv_sec;
    }
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &stNext, NULL);
  }
}

/* ---- What can be asked of the filters: on the command thread, with the registry locked ---- */

static bool IsGain(const char *pszName, const void *pData, uint32_t u32Size) {
  return pszName != NULL && pData != NULL && strcmp(pszName, "GainDb") == 0 && u32Size == sizeof(int32_t);
}

static uint32_t GetParameter(ZE_KEST_Filter_s *pstFilter, const char *pszName, void *pData,
                             uint32_t u32Size) {
  (void)pstFilter;
  if (!IsGain(pszName, pData, u32Size)) return ZE_KEST_INVALID_ARGUMENT;
  const int32_t s32GainDb = s_s32GainDb;
  memcpy(pData, &s32GainDb, sizeof(s32GainDb));
  return ZE_KEST_OK;
}

/* From -144 to 0 dB, so that no sample is too loud. */
static uint32_t SetParameter(ZE_KEST_Filter_s *pstFilter, const char *pszName, const void *pData,
                             uint32_t u32Size) {
  int32_t s32GainDb = 0;
  (void)pstFilter;
  if (!IsGain(pszName, pData, u32Size)) return ZE_KEST_INVALID_ARGUMENT;
  memcpy(&s32GainDb, pData, sizeof(s32GainDb));
  if (s32GainDb < -144 || s32GainDb > 0) return ZE_KEST_INVALID_ARGUMENT;
  s_s32GainDb = s32GainDb;
  return ZE_KEST_OK;
}

static unsigned int TakeCommand(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand) {
  if (pstFilter != &s_stMeter || strcmp((const char *)pszCommand, "peak") != 0)
    return ZE_KEST_INVALID_ARGUMENT;
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "peak %d\n", s_s32Peak);
  return ZE_KEST_OK;
}

static const ZE_KEST_SupportedParameter_s kParameters = {
    .szName = "GainDb", .szDescription = "Gain: dB, -144 to 0", .sztSize = sizeof(int32_t)};

/* ---- Start, registration, shut-down ---- */

/* On the thread that runs the pipeline, whose id the lists show, and with no lock held. */
static void *RunPipeline(void *pvUnused) {
  const uint32_t u32Tid = (uint32_t)ze_kest_Utility_GetTid();
  (void)pvUnused;
  ze_kest_Debug_RegisterInfo(s_stPipeline.szName, NULL, u32Tid, "Host", NULL);
  for (size_t i = 0; i < FILTERS; ++i) {
    ze_kest_Debug_RegisterInfo(s_stPipeline.szName, s_apstFilter[i], u32Tid, "Host", TakeCommand);
  }
  s_stPipeline.u32State = 4; /* run */
  RunCycles();
  /* Removes the filters too. After it no call to them is in progress any more, and the records may go. */
  ze_kest_Debug_UnRegisterInfo(s_stPipeline.szName, NULL);
  return NULL;
}

static void StartDebugLayer(void) {
  const mode_t userMask = umask(0);
  umask(userMask);
  ze_kest_Debug_Init(); /* leaves the umask 077 when it creates the shared files */
  umask(userMask);
  ze_kest_Debug_SetSupportedParameterList(&kParameters);
}

/* The shut-down waits until one more line has come through the pipe. Another process may take a line, so
 * there is one every 10 ms until the shut-down has returned. */
static void *WakePipe(void *pvDone) {
  while (!atomic_load((atomic_bool *)pvDone)) {
    const int s32Pipe = open(COMMAND_PIPE, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (s32Pipe >= 0) {
      (void)!write(s32Pipe, "\n", 1);
      close(s32Pipe);
    }
    usleep(10000);
  }
  return NULL;
}

static void StopDebugLayer(void) {
  atomic_bool bDone = false;
  pthread_t stWaker;
  const bool bWaker = pthread_create(&stWaker, NULL, WakePipe, &bDone) == 0;
  ze_kest_Debug_DeInit();
  atomic_store(&bDone, true);
  if (bWaker) pthread_join(stWaker, NULL);
}

int main(int argc, char **argv) {
  const struct timespec stSeconds = {argc > 1 ? atol(argv[1]) : 3600, 0};
  pthread_t stThread;
  sigset_t stEnd;
  sigemptyset(&stEnd);
  sigaddset(&stEnd, SIGINT);
  sigaddset(&stEnd, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stEnd, NULL); /* before any thread starts, so that all of them inherit it */
  signal(SIGPIPE, SIG_IGN);                 /* the pipe's reader may go while WakePipe writes */

  StartDebugLayer();
  LayOutPipeline();
  if (pthread_create(&stThread, NULL, RunPipeline, NULL) != 0) {
    StopDebugLayer();
    return 1;
  }
  sigtimedwait(&stEnd, NULL, &stSeconds);
  s_bStop = true;
  pthread_join(stThread, NULL);
  StopDebugLayer();
  printf("the last peak was %d\n", s_s32Peak);
  return s_s32Peak > 0 ? 0 : 1;
}
