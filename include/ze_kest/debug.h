/* SPDX-License-Identifier: Apache-2.0
 *
 * The debug layer: start and stop, the log, and commands.
 *
 * A process that hosts pipelines calls ze_kest_Debug_Init once when it starts and ze_kest_Debug_DeInit when
 * it ends. In between, an engineer can control it from a shell through the named pipe "D" in the debug
 * directory; the log is written to "KestLog.txt" in the same directory.
 *
 * fork: a child has the parent's settings and registry and writes to the same log, under its own ids. It has
 * no command thread and starts none: ze_kest_Debug_Init finds the layer up. It must not call
 * ze_kest_Debug_DeInit, which would remove the shared settings of its parent. A process that forks to run an
 * audio service of its own forks before ze_kest_Debug_Init and before anything is reported. */
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

/* The current verbosity, one of the levels in result.h. It is 0 until the first log line of the process, or
 * ze_kest_Debug_Init, takes it over from the settings that all processes share. Change it with the command
 * "kest_log_level", which also informs the other processes. Any thread may read it without a lock. */
extern ZE_KEST_API uint32_t u32KestDebugLevel;

/* 1 after "kest_atrace=on", 0 after "kest_atrace=off" and initially. The library only stores it for its
 * users. */
extern ZE_KEST_API uint8_t bKestAtraceEnable;

/* The trace file opened by the most recent filter-io watch; NULL when there is none. */
extern ZE_KEST_API FILE *pFileKestDebugPipeline;

/* ---- Requests from an engineer, published for the framework's filters. ----
 *
 * Commands write them and processing threads read them in every cycle, without a lock, so a reader may
 * briefly see a new number together with an old name. A name is cut to 63 characters and always terminated
 * within its field; a reader that needs a stable name copies it. The numbers are initially 0. */

/* What a perf-event target or a process-status query refers to. */
enum ZE_KEST_Target_e {
  ZE_KEST_TARGET_NONE = 0,
  ZE_KEST_TARGET_PIPELINE = 16, /* the pipeline of the first name */
  ZE_KEST_TARGET_FILTER = 32    /* the filter of the second name in the pipeline of the first */
};

/* Whether a test tone, PCM level or data rate has been requested. */
enum ZE_KEST_Request_e { ZE_KEST_REQUEST_NONE = 0, ZE_KEST_REQUEST_MADE = 16 };

/* What the performance measurement watches: the kind of target, its pipeline and its filter
 * ("kest_perf_event_target"). */
extern ZE_KEST_API uint32_t u32KestPerfEventTarget;
extern ZE_KEST_API char szKestPerfEventTargetName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestPerfEventTargetName2[ZE_KEST_NAME_SIZE];

/* Which pipeline or filter is to report its processing status: the kind of target, its pipeline and its
 * filter ("kest_process_status"). */
extern ZE_KEST_API uint32_t u32KestQueryProcessStatus;
extern ZE_KEST_API char szKestQueryProcessStatusName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestQueryProcessStatusName2[ZE_KEST_NAME_SIZE];

/* Which filter is to play a test tone: the request, pipeline, filter and input port number
 * ("kest_send_test_tone"). */
extern ZE_KEST_API uint32_t u32KestSendTestTone;
extern ZE_KEST_API char szKestSendTestToneName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestSendTestToneName2[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API uint32_t u32KestSendTestToneInputPort;

/* Which filter is to measure its PCM level, and over how many cycles: the request, pipeline and filter, the
 * number of cycles requested and the number remaining, which the measuring filter counts down
 * ("kest_calpcmlev"). */
extern ZE_KEST_API uint32_t u32KestCalPcmLev;
extern ZE_KEST_API char szKestCalPcmLevName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestCalPcmLevName2[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API uint32_t u32KestCalPcmLevMaxCount;
extern ZE_KEST_API uint32_t u32KestCalPcmLevCount;

/* Which filter is to measure its data rate: the request, pipeline and filter, and the input and output port
 * numbers ("kest_calculate_data_rate"). */
extern ZE_KEST_API uint32_t u32KestCalculateDataRate;
extern ZE_KEST_API char szKestCalculateDataRateName1[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API char szKestCalculateDataRateName2[ZE_KEST_NAME_SIZE];
extern ZE_KEST_API uint32_t u32KestCalculateDataRateInputPort;
extern ZE_KEST_API uint32_t u32KestCalculateDataRateOutputPort;

/* Starts the debug layer: the settings shared between the processes, the log file and the command thread.
 * Returns ZE_KEST_OK, also when the layer is already up (reported at ERR level); ZE_KEST_FAILED when the
 * command thread could not be created, in which case the layer is up nevertheless. If the debug directory is
 * missing, full or not writable, or if the pipe's path is taken by a file that is not a pipe, this is
 * reported and the layer works without whatever could not be set up. Call from one thread of the process
 * only. Not real-time safe.
 *
 * Deliberate: when the shared settings' files are created, the process's umask becomes 077 and stays so. This
 * may happen here or at the first message that the process logs. A host whose own files others may read sets
 * its umask again afterwards. */
ZE_KEST_API uint32_t ze_kest_Debug_Init(void);

/* Stops the debug layer: closes the log file, ends the command thread and the test threads, and removes the
 * shared settings. Waits until one more line has come through the pipe, unless there is no pipe or it has
 * been removed or replaced. Returns ZE_KEST_OK, also when the layer is not up (reported at INFO level). Call
 * from the thread that calls ze_kest_Debug_Init. Not real-time safe.
 *
 * A host that does not want to wait for an engineer writes the line itself, again and again until this
 * returns, since another process may take a line (it answers an empty one like any that it does not know):
 *
 *   static void *WakePipe(void *pvDone) {
 *     while (!atomic_load((atomic_bool *)pvDone)) {
 *       const int s32Pipe = open("/mnt/vendor/tmp/kest/D", O_WRONLY | O_NONBLOCK);
 *       if (s32Pipe >= 0) {
 *         (void)!write(s32Pipe, "\n", 1);
 *         close(s32Pipe);
 *       }
 *       usleep(10000);
 *     }
 *     return NULL;
 *   }
 *
 *   void ShutDown(void) {
 *     atomic_bool bDone = false;
 *     pthread_t stThread;
 *     pthread_create(&stThread, NULL, WakePipe, &bDone);
 *     ze_kest_Debug_DeInit();
 *     atomic_store(&bDone, true);
 *     pthread_join(stThread, NULL);
 *   }
 *
 * With signal(SIGPIPE, SIG_IGN): the reader may go between the open and the write. */
ZE_KEST_API uint32_t ze_kest_Debug_DeInit(void);

/* Writes one message to the console and to the log file, depending on which of them is switched on. Writes
 * nothing before ze_kest_Debug_Init, after ze_kest_Debug_DeInit, or from a thread that a command has excluded
 * from the log. u32Level: a level of result.h; it selects the prefix in the file (PRINT has none) but does
 * not filter. pszFormat: printf-like; the message ends in "\n".
 * Any thread, also in the child of a fork beside other threads (which has no command thread: there only
 * ze_kest_Debug_DeInit and the commands of the test threads must not be used). Takes a lock and writes a
 * file, so not real-time safe; a line that a sink cannot take at once is lost and counted in the next one. */
ZE_KEST_API void ze_kest_Debug_Log(unsigned int u32Level, const char *pszFormat, ...) ZE_KEST_PRINTF(2, 3);

/* Writes one message to a file of the caller and flushes it, with no prefix, size limit or lock.
 * pFile: an open stream; if NULL, nothing is written; pszFormat: printf-like.
 * Any thread, not real-time safe. */
ZE_KEST_API void ze_kest_Utility_LogToFile(FILE *pFile, const char *pszFormat, ...) ZE_KEST_PRINTF(2, 3);

/* Executes one command, as if it had arrived through the pipe.
 * pszParameterPairs: one line without its newline; it is not modified.
 * Returns ZE_KEST_OK when a command handled the line, ZE_KEST_INVALID_ARGUMENT when none did or for NULL,
 * ZE_KEST_NOT_INITIALISED before ze_kest_Debug_Init.
 * Any thread, not real-time safe. */
ZE_KEST_API uint32_t ze_kest_Debug_SetParameter(const char *pszParameterPairs);

/* ---- The data path: what filters and pipelines call in every cycle ----
 *
 * Real-time safe as long as an engineer has switched nothing on: until then there is no lock, no allocation,
 * no system call and no report. Whatever is switched on prints, allocates and writes files on the calling
 * thread. */

/* Prints a filter's port levels, dumps its ports to files, overwrites its output with a sine and finds the
 * burst of a latency measurement, each if it is switched on for this filter ("kest_print_filter_info",
 * "kest_dump_...", "kest_output_sinewave", "kest_latency"). Deliberate: the sine is written as 16-bit frames
 * into the storage of group 0 of output port 0, and the port's level and write size are taken as bytes for
 * it.
 * pstFilter: the calling filter. Every filter calls it once per cycle on the thread that runs the filter,
 * after accounting for what it read and wrote, and before that data is released and committed.
 * ZE_KEST_INVALID_ARGUMENT: NULL; ZE_KEST_FAILED: the filter has no parent pipeline (both reported);
 * ZE_KEST_OUT_OF_MEMORY: a port-level line could not be printed, and the remaining steps are skipped in this
 * cycle. Files that cannot be written are reported and do not change the result. */
ZE_KEST_API int32_t ze_kest_Debug_Filter(const ZE_KEST_Filter_s *pstFilter);

/* The sides of a latency measurement. */
enum ZE_KEST_Latency_e {
  ZE_KEST_LATENCY_START = 4, /* silences the input of the start filter and writes the burst into it */
  ZE_KEST_LATENCY_END = 5    /* looks for the burst in the output of the end filter */
};

/* One side of the latency measurement ("kest_latency"). A filter calls this with ZE_KEST_LATENCY_START once
 * per cycle, on the thread that runs it, before it reads its input; ze_kest_Debug_Filter handles the other
 * side. pstFilter: the calling filter; u32Kind: ZE_KEST_Latency_e; any other value does nothing.
 * ZE_KEST_INVALID_ARGUMENT: NULL; ZE_KEST_FAILED: no parent pipeline (both reported, and only for these two
 * kinds). The cycle that inserts the burst takes the registry's lock, so do not call this from a debug
 * callback or a parameter entry. */
ZE_KEST_API int32_t ze_kest_Debug_MeasureLatency(const ZE_KEST_Filter_s *pstFilter, uint32_t u32Kind);

/* 1 when a pipeline is being watched and the timing trace is on ("kest_debug_filter_io"), else 0. Tells the
 * caller whether it is worth taking time stamps for ze_kest_Debug_Io. */
ZE_KEST_API uint32_t ze_kest_Debug_Io_Is_Enable(void);

/* What a call of ze_kest_Debug_Io reports. */
enum ZE_KEST_IoType_e {
  ZE_KEST_IO_PIPELINE_END = 1, /* the pipeline finished its cycle: writes a line */
  ZE_KEST_IO_FILTER_END = 3,   /* the filter finished its turn: writes a line */
  ZE_KEST_IO_FILTER_START = 5  /* the filter begins its turn: stores the time for the end's line */
};

/* Writes one event of a cycle to the trace file of every watched pipeline whose name is a prefix of
 * pszPipelineName.
 * pszPipelineName: not NULL; pszFilterName: may be NULL, in which case a filter's end is not written;
 * u32Type: ZE_KEST_IoType_e, any other value writes nothing; u64Start, u64Now: the start of the cycle and the
 * current time, in the caller's unit. Only one filter start is stored, for all pipelines together, so filters
 * of pipelines that are traced at the same time overwrite each other's starts. Times are written as signed
 * 32-bit numbers. When the trace is on, this takes a lock and writes files. Do not call it from a debug
 * callback or a parameter entry: they run with that lock held. */
ZE_KEST_API void ze_kest_Debug_Io(const char *pszPipelineName, const char *pszFilterName, uint32_t u32Type,
                                  uint64_t u64Start, uint64_t u64Now);

/* Samples of the sine's period. */
#define ZE_KEST_SINE_SAMPLES 48

/* One period of 1 kHz at 48 kHz, left-aligned in 32 bits, about 6 dB below full scale. */
extern ZE_KEST_API const int32_t _as32KestSine1K48Mono[ZE_KEST_SINE_SAMPLES];

/* ---- The registry: which pipelines and filters run, and on which threads ----
 *
 * The framework registers a pipeline, then its filters, connects pipelines that feed each other, and
 * unregisters whatever ends; ze_kest_Debug_DeInit does not empty the registry. Names are cut to 63
 * characters. Any thread; takes a lock and allocates, so not real-time safe. */

/* A filter's callback for debug commands.
 * pstFilter: the registered filter, NULL for an entry without a filter; pszCommand: the command's text, which
 * must not be modified. Returns ZE_KEST_OK when it handled the command. Called either with the registry
 * locked, on the thread that executes the command, or without the lock, on the thread that registers the
 * filter. It must not call back into the registry. */
typedef unsigned int (*ZE_KEST_DebugCallback)(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand);

/* A parameter supported by the framework's filters. The framework owns the list. */
typedef struct ZE_KEST_SupportedParameter_s {
  char szName[ZE_KEST_NAME_SIZE];               /* its name */
  char szDescription[ZE_KEST_NAME_SIZE];        /* what it means */
  size_t sztSize;                               /* bytes of its value */
  uint32_t u32Reserved;                         /* not used by the library */
  struct ZE_KEST_SupportedParameter_s *pstNext; /* NULL at the end */
} ZE_KEST_SupportedParameter_s;

/* Registers a pipeline, or a filter of a pipeline.
 * pszPipelineName: may be NULL; pstFilter: NULL for a pipeline, else the filter, which remains the caller's
 * and must stay valid until it is unregistered; u32Tid, pszThreadName (may be NULL): the thread that runs it;
 * pfnCallback: may be NULL; it is called at once, before the entry exists, if a preset command is set. A
 * filter is placed after its parent pipeline and that pipeline's earlier filters, or at the end when the
 * pipeline is not registered. Duplicates are not detected: registering again adds another entry.
 * ZE_KEST_FAILED: memory is exhausted; the registry is unchanged. */
ZE_KEST_API uint32_t ze_kest_Debug_RegisterInfo(const char *pszPipelineName, ZE_KEST_Filter_s *pstFilter,
                                                uint32_t u32Tid, const char *pszThreadName,
                                                ZE_KEST_DebugCallback pfnCallback);

/* Removes the first filter entry with the given pipeline and filter names or, for a NULL filter, every entry
 * of the pipeline including its filters'. pszPipelineName, pstFilter: as registered. ZE_KEST_OK also when
 * nothing matched. */
ZE_KEST_API uint32_t ze_kest_Debug_UnRegisterInfo(const char *pszPipelineName,
                                                  const ZE_KEST_Filter_s *pstFilter);

/* Records that a pipeline feeds another one, or no longer does. pszPipelineName: the pipeline;
 * pszFedPipelineName: the one that it feeds. ZE_KEST_OK also when the first pipeline is
 * not registered or already feeds 8 others. Connecting: ZE_KEST_INVALID_ARGUMENT if the first name is NULL
 * (reported); ZE_KEST_FAILED if the second is NULL and would have been stored (reported). Disconnecting
 * always returns ZE_KEST_OK; a NULL name is reported. */
ZE_KEST_API uint32_t ze_kest_Debug_ConnectPipeline(const char *pszPipelineName,
                                                   const char *pszFedPipelineName);
ZE_KEST_API uint32_t ze_kest_Debug_DisconnectPipeline(const char *pszPipelineName,
                                                      const char *pszFedPipelineName);

/* Sets the head of the framework's list of supported parameters. pstHead: NULL for none. The list is not
 * copied, so it must stay valid until another one is set. Takes no lock. */
ZE_KEST_API void ze_kest_Debug_SetSupportedParameterList(const ZE_KEST_SupportedParameter_s *pstHead);

/* Bytes of a short audio descriptor block: 16 entries of 24 bytes, indexed by audio format code. */
#define ZE_KEST_SAD_SIZE 384

/* Stores a copy of the sink's short audio descriptor block. pu8Sad: the block; s32Size: ZE_KEST_SAD_SIZE.
 * NULL and any other size are reported and leave the stored block unchanged. Always ZE_KEST_OK. */
ZE_KEST_API uint32_t ze_kest_Debug_SetSAD(const uint8_t *pu8Sad, int32_t s32Size);

/* Only checks its arguments: no parameter can be read through this function, and pData is left unchanged.
 * pszParameterName, pData: not NULL; sztSize: not 0. ZE_KEST_INVALID_ARGUMENT: a NULL pointer or a size of 0;
 * ZE_KEST_NOT_INITIALISED before ze_kest_Debug_Init. */
ZE_KEST_API uint32_t ze_kest_Debug_GetParameter(const char *pszParameterName, void *pData, size_t sztSize);

#ifdef __cplusplus
}
#endif

#endif
