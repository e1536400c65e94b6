/* SPDX-License-Identifier: Apache-2.0
 *
 * The debug layer: start and stop, the log, and commands.
 *
 * A process that hosts pipelines calls ze_kest_Debug_Init once at its start and ze_kest_Debug_DeInit at its
 * end. In between, an engineer drives it from a shell through the named pipe "D" in the debug directory, and
 * the log goes to "KestLog.txt" beside it. */
#ifndef ZE_KEST_DEBUG_H
#define ZE_KEST_DEBUG_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "ze_kest/model.h"
#include "ze_kest/result.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The verbosity in force, a level of result.h; 0 until the first log line of the
 * process, or ze_kest_Debug_Init, takes it over from the shared settings. Set it by the command
 * "kest_log_level", which also tells the other processes. Read from any thread without a lock. */
extern ZE_KEST_API uint32_t u32KestDebugLevel;

/* 1 after "kest_atrace=on", 0 after "kest_atrace=off" and at start; the library only holds it for its users.
 */
extern ZE_KEST_API uint8_t bKestAtraceEnable;

/* The trace file of the latest filter-io watch; NULL when there is none. */
extern ZE_KEST_API FILE *pFileKestDebugPipeline;

/* ---- Requests of an engineer, published for the framework's filters. ----
 *
 * Commands write them, processing threads read them in every cycle, without a lock: a reader may meet a new
 * number beside an old name for a moment. A name is cut at 63 characters and always terminated within its
 * field; a reader that needs it to hold still copies it. The numbers are 0 at start. */

/* What a perf-event target or a process-status query means. */
enum ZE_KEST_Target_e {
  ZE_KEST_TARGET_NONE = 0,
  ZE_KEST_TARGET_PIPELINE = 16, /* the pipeline of the first name */
  ZE_KEST_TARGET_FILTER = 32    /* the filter of the second name in the pipeline of the first */
};

/* Whether a test tone, PCM level or data rate is asked for. */
enum ZE_KEST_Request_e { ZE_KEST_REQUEST_NONE = 0, ZE_KEST_REQUEST_MADE = 16 };

/* What the performance measurement watches: a target, its pipeline and filter ("kest_perf_event_target"). */
extern ZE_KEST_API uint32_t u32KestPerfEventTarget;
extern ZE_KEST_API char szKestPerfEventTargetName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestPerfEventTargetName2[ZE_KEST_NAME_SIZE];

/* Who reports its processing status: a target, its pipeline and its filter ("kest_process_status"). */
extern ZE_KEST_API uint32_t u32KestQueryProcessStatus;
extern ZE_KEST_API char szKestQueryProcessStatusName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestQueryProcessStatusName2[ZE_KEST_NAME_SIZE];

/* Who plays a test tone: a request, pipeline, filter and number of the input port ("kest_send_test_tone"). */
extern ZE_KEST_API uint32_t u32KestSendTestTone;
extern ZE_KEST_API char szKestSendTestToneName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestSendTestToneName2[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API uint32_t u32KestSendTestToneInputPort;

/* Who measures its PCM level, and over how many cycles: a request, pipeline and filter, the cycles asked for
 * and those still to go, which the measuring filter counts down ("kest_calpcmlev"). */
extern ZE_KEST_API uint32_t u32KestCalPcmLev;
extern ZE_KEST_API char szKestCalPcmLevName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestCalPcmLevName2[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API uint32_t u32KestCalPcmLevMaxCount;
extern ZE_KEST_API uint32_t u32KestCalPcmLevCount;

/* Who measures its data rate: a request, pipeline and filter, the numbers of the input and the output port
 * ("kest_calculate_data_rate"). */
extern ZE_KEST_API uint32_t u32KestCalculateDataRate;
extern ZE_KEST_API char szKestCalculateDataRateName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestCalculateDataRateName2[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API uint32_t u32KestCalculateDataRateInputPort;
extern ZE_KEST_API uint32_t u32KestCalculateDataRateOutputPort;

/* Brings the debug layer up: the settings shared between the processes, the log file, the command thread.
 * Returns ZE_KEST_OK, also when it is up already (reported at ERR level); ZE_KEST_FAILED when the command
 * thread could not be created, the layer is up all the same. A debug directory that is missing, full or
 * cannot be written, and a file in the pipe's place that is none, are reported, and the layer works without
 * what could not be set up. Called by one thread of the process, not real-time safe. */
ZE_KEST_API uint32_t ze_kest_Debug_Init(void);

/* Takes the debug layer down: closes the log file, ends the command thread and the test
 * threads, and removes the shared settings. Waits until one more line has come through the pipe; without a
 * pipe, or when it was removed or replaced, it does not wait for one. Returns ZE_KEST_OK, also when the layer
 * is not up (reported at INFO level). Called by the thread that calls ze_kest_Debug_Init, not real-time safe.
 */
ZE_KEST_API uint32_t ze_kest_Debug_DeInit(void);

/* Writes one message to the console and to the log file, as far as they are switched on. Writes nothing
 * before ze_kest_Debug_Init and after ze_kest_Debug_DeInit, nor for a thread that a command has narrowed the
 * log down from. u32Level: a level of result.h; it chooses the prefix in the file (PRINT has none) and does
 * not filter. pszFormat: printf-like; the message ends in "\n".
 * Any thread; takes a lock and writes a file, so not real-time safe. */
ZE_KEST_API void ze_kest_Debug_Log(unsigned int u32Level, const char *pszFormat, ...) ZE_KEST_PRINTF(2, 3);

/* Writes one message to a file of the caller and flushes it; no prefix, no size limit, no lock.
 * pFile: an open stream; NULL: nothing is written.
 * Any thread, not real-time safe. */
ZE_KEST_API void ze_kest_Utility_LogToFile(FILE *pFile, const char *pszFormat, ...) ZE_KEST_PRINTF(2, 3);

/* Carries out one command, as if it had come through the pipe.
 * pszParameterPairs: one line without its newline; it is not changed.
 * Returns ZE_KEST_OK when a command took the line, ZE_KEST_INVALID_ARGUMENT when none did or for NULL,
 * ZE_KEST_NOT_INITIALISED before ze_kest_Debug_Init.
 * Any thread, not real-time safe. */
ZE_KEST_API uint32_t ze_kest_Debug_SetParameter(const char *pszParameterPairs);

/* ---- The data path: what filters and pipelines call in every cycle ----
 *
 * Real-time safe as long as an engineer has switched nothing on: no lock, no allocation, no system call and
 * no report then. What is switched on prints, allocates and writes files on the calling thread. */

/* Prints a filter's port levels, dumps its ports to files, writes a sine over its output (16-bit frames in
 * the storage of group 0 of output port 0, with its level and its write size taken for bytes) and finds the
 * burst of a latency measurement, as far as these are switched on for it ("kest_print_filter_info",
 * "kest_dump_...", "kest_output_sinewave", "kest_latency"). Called by every filter once per cycle, on the
 * thread that runs it, after it has accounted for what it read and wrote and before that is released and
 * committed. ZE_KEST_INVALID_ARGUMENT: NULL; ZE_KEST_FAILED: the filter has no parent pipeline (both
 * reported); ZE_KEST_OUT_OF_MEMORY: a port-level line could not be printed, which skips the rest in this
 * cycle. Files that cannot be written are reported and do not change the result. */
ZE_KEST_API int32_t ze_kest_Debug_Filter(const ZE_KEST_Filter_s *pstFilter);

/* The sides of a latency measurement. */
enum ZE_KEST_Latency_e {
  ZE_KEST_LATENCY_START = 4, /* silences the input of the start filter and writes the burst into it */
  ZE_KEST_LATENCY_END = 5    /* looks for the burst in the output of the end filter */
};

/* One side of the latency measurement ("kest_latency"). Call ZE_KEST_LATENCY_START once per filter and cycle,
 * on the thread that runs the filter, before it reads its input; ze_kest_Debug_Filter does the other side.
 * u32Kind: ZE_KEST_Latency_e; any other does nothing. ZE_KEST_INVALID_ARGUMENT: NULL;
 * ZE_KEST_FAILED: no parent pipeline (both reported, by the two kinds only). The cycle of the burst takes the
 * lock of the registry: not from a debug callback or a parameter entry.
 */
ZE_KEST_API int32_t ze_kest_Debug_MeasureLatency(const ZE_KEST_Filter_s *pstFilter, uint32_t u32Kind);

/* 1 when a pipeline is watched and the timing trace is on ("kest_debug_filter_io"), else 0: whether time
 * stamps for ze_kest_Debug_Io are worth taking. */
ZE_KEST_API uint32_t ze_kest_Debug_Io_Is_Enable(void);

/* What a call of ze_kest_Debug_Io stands for. */
enum ZE_KEST_IoType_e {
  ZE_KEST_IO_PIPELINE_END = 1, /* a pipeline has ended its cycle: writes a line */
  ZE_KEST_IO_FILTER_END = 3,   /* a filter has ended its turn: writes a line */
  ZE_KEST_IO_FILTER_START = 5  /* a filter begins its turn: keeps the time for its end */
};

/* Writes one event of a cycle to the trace files of the watched pipelines whose names begin alike.
 * pszPipelineName: not NULL; pszFilterName: may be NULL, then a filter's end is not written; u32Type:
 * ZE_KEST_IoType_e, any other writes nothing; u64Start, u64Now: when the cycle began and now, in the caller's
 * unit. The latest filter start is kept once for all pipelines, so filters of several pipelines that are
 * traced together mix their starts; times are written as signed 32-bit numbers. When the trace is on it takes
 * a lock and writes files. Not from a debug callback or a parameter entry, which run with that lock held. */
ZE_KEST_API void ze_kest_Debug_Io(const char *pszPipelineName, const char *pszFilterName, uint32_t u32Type,
                                  uint64_t u64Start, uint64_t u64Now);

#define ZE_KEST_SINE_SAMPLES 48

/* One period of 1 kHz at 48 kHz, left-aligned in 32 bits, about 6 dB below full scale. */
extern ZE_KEST_API const int32_t _as32KestSine1K48Mono[ZE_KEST_SINE_SAMPLES];

/* ---- The registry: which pipelines and filters run, and on which threads ----
 *
 * The framework registers a pipeline, then its filters, connects pipelines that feed each other, and
 * unregisters what ends; shut-down does not empty the registry. Names are cut at 63 characters. Any thread;
 * takes a lock and allocates, so not real-time safe. */

/* A filter's entry for debug commands.
 * pstFilter: as it was registered, NULL for an entry without a filter; pszCommand: the command's text, not to
 * be changed. Returns ZE_KEST_OK when it took the command. Called with the registry locked, on the thread
 * that carries out the command, or without the lock on the thread that registers the filter. It must not call
 * back into the registry. */
typedef unsigned int (*ZE_KEST_DebugCallback)(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand);

/* A parameter that the framework's filters support; the framework owns the list. */
typedef struct ZE_KEST_SupportedParameter_s {
  char szName[ZE_KEST_NAME_SIZE];
  char szDescription[ZE_KEST_NAME_SIZE];
  size_t sztSize; /* bytes of its value */
  uint32_t u32Reserved;
  struct ZE_KEST_SupportedParameter_s *pstNext; /* NULL at the end */
} ZE_KEST_SupportedParameter_s;

/* Registers a pipeline, or a filter of one.
 * pszPipelineName: may be NULL; pstFilter: NULL for a pipeline, else the filter, which stays the caller's and
 * valid until it is unregistered; u32Tid, pszThreadName (may be NULL): the thread that runs it; pfnCallback:
 * may be NULL. It is called at once, before the entry exists, when a preset command is set. A filter stands
 * behind its parent pipeline and the filters registered for that before, or at the end when the pipeline is
 * not registered. Nothing is registered once only: a second time gives a second entry. ZE_KEST_FAILED: memory
 * is exhausted; the registry is unchanged. */
ZE_KEST_API uint32_t ze_kest_Debug_RegisterInfo(const char *pszPipelineName, ZE_KEST_Filter_s *pstFilter,
                                                uint32_t u32Tid, const char *pszThreadName,
                                                ZE_KEST_DebugCallback pfnCallback);

/* Removes the first filter entry with the pipeline's and the filter's name, or for a NULL filter every entry
 * of the pipeline, its filters' too. ZE_KEST_OK also when nothing matched. */
ZE_KEST_API uint32_t ze_kest_Debug_UnRegisterInfo(const char *pszPipelineName,
                                                  const ZE_KEST_Filter_s *pstFilter);

/* Notes that a pipeline feeds another one, or no longer does. ZE_KEST_OK also when the first is not
 * registered or feeds 8 already. Connecting: ZE_KEST_INVALID_ARGUMENT for a NULL first name, ZE_KEST_FAILED
 * when the second one is due and NULL. Disconnecting is always ZE_KEST_OK; a NULL name is reported. */
ZE_KEST_API uint32_t ze_kest_Debug_ConnectPipeline(const char *pszPipelineName,
                                                   const char *pszFedPipelineName);
ZE_KEST_API uint32_t ze_kest_Debug_DisconnectPipeline(const char *pszPipelineName,
                                                      const char *pszFedPipelineName);

/* Hands over the head of the framework's list of supported parameters, NULL for none. The list is not copied
 * and stays valid until another one is handed over. Takes no lock. */
ZE_KEST_API void ze_kest_Debug_SetSupportedParameterList(const ZE_KEST_SupportedParameter_s *pstHead);

/* Bytes of a short audio descriptor block: 16 entries of 24 bytes, indexed by audio format code. */
#define ZE_KEST_SAD_SIZE 384

/* Keeps a copy of the sink's short audio descriptor block. s32Size: ZE_KEST_SAD_SIZE; any other size is
 * reported and keeps the old block, and is ZE_KEST_OK too. */
ZE_KEST_API uint32_t ze_kest_Debug_SetSAD(const uint8_t *pu8Sad, int32_t s32Size);

/* No parameter can be read through this entry: it checks its arguments and leaves pData alone.
 * ZE_KEST_INVALID_ARGUMENT: a NULL pointer or a size of 0; ZE_KEST_NOT_INITIALISED before ze_kest_Debug_Init.
 */
ZE_KEST_API uint32_t ze_kest_Debug_GetParameter(const char *pszParameterName, void *pData, size_t sztSize);

#ifdef __cplusplus
}
#endif

#endif
