/* SPDX-License-Identifier: Apache-2.0
 *
 * CPU counters, and the measurement of processing cycles with them; part of ze_kest/utility.h. A
 * function returns a result code of result.h.
 *
 * Everywhere, pstPerfEvent: the group; pstPerformanceMeasure: the record of the measured cycles. */
#ifndef ZE_KEST_PERFORMANCE_H
#define ZE_KEST_PERFORMANCE_H

#include <stddef.h>
#include <stdint.h>

#include "ze_kest/model.h"
#include "ze_kest/result.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Performance: what a thread's work costs. A record is used by one thread at a time. ---- */

/* The counted events. Entry 0 leads the group. */
#define ZE_KEST_PERF_EVENTS 3
#define ZE_KEST_PERF_EVENT_NAME_SIZE 32
extern ZE_KEST_API const char PERF_EVENT_NAME[ZE_KEST_PERF_EVENTS][ZE_KEST_PERF_EVENT_NAME_SIZE];
/* Type and config of each event, as perf_event_open numbers them. */
extern ZE_KEST_API const uint32_t PERF_EVENT_TYPE[ZE_KEST_PERF_EVENTS];
extern ZE_KEST_API const uint64_t PERF_EVENT_CONFIG[ZE_KEST_PERF_EVENTS];

/* A group of counters, owned by the caller, who zeroes it before the first use and closes it after the last.
 * Entry e belongs to event e: retired instructions, CPU cycles, nanoseconds of task clock. */
typedef struct ZE_KEST_PerfEvent_s {
  int32_t as32Fd[ZE_KEST_PERF_EVENTS];     /* valid while bInit is 1; -1: not open */
  uint64_t au64Id[ZE_KEST_PERF_EVENTS];    /* the kernel's id of the event */
  uint64_t au64Count[ZE_KEST_PERF_EVENTS]; /* value at the last read */
  uint64_t au64Total[ZE_KEST_PERF_EVENTS]; /* sum of all values read since the record was zeroed */
  uint32_t bInit;                          /* 1 while the group is open */
} ZE_KEST_PerfEvent_s;

/* The functions count for the calling thread, excluding its time in the kernel. Call Open, then any number of
 * Enable and GetCurrentEventCount, then Close, all on the measured thread. They make system calls, and
 * reading allocates, so none is real-time safe. Failures are reported. */

/* Opens the group, stopped; a group that is open is closed first. Counts and totals are kept.
 * ZE_KEST_NOT_INITIALISED: the kernel refused an event. The record then counts as closed. Deliberate: the
 * descriptors of events opened before the refused one stay open in as32Fd, and Close does not close them. */
ZE_KEST_API uint32_t ze_kest_Utility_PerfEvent_Open(ZE_KEST_PerfEvent_s *pstPerfEvent);

/* Resets the counters to zero and starts them. ZE_KEST_NOT_INITIALISED: not open. */
ZE_KEST_API uint32_t ze_kest_Utility_PerfEvent_Enable(ZE_KEST_PerfEvent_s *pstPerfEvent);

/* Stops the counters, stores their values in au64Count and adds them to au64Total. An event that the kernel
 * does not deliver keeps both values. ZE_KEST_NOT_INITIALISED: not open; ZE_KEST_FAILED: the group could not
 * be read or memory is exhausted; the counters are stopped even then. */
ZE_KEST_API uint32_t ze_kest_Utility_PerfEvent_GetCurrentEventCount(ZE_KEST_PerfEvent_s *pstPerfEvent);

/* Closes the group; as32Fd keeps its stale values. ZE_KEST_NOT_INITIALISED: not open. */
ZE_KEST_API uint32_t ze_kest_Utility_PerfEvent_Close(ZE_KEST_PerfEvent_s *pstPerfEvent);

/* The measured cycles of a pipeline, a filter or a section of a filter. Owned by the caller, who zeroes it
 * before the first use. Before discarding a record whose stPerfEvent.bInit is 1, close its stPerfEvent: that
 * is the case between a start and its stop, and after a stop that could not read the counters or that found a
 * different target. Times are in microseconds of the monotonic clock, 0 if it cannot be read. */
typedef struct ZE_KEST_PerformanceMeasure_s {
  uint64_t u64Count;               /* completed stops */
  uint64_t u64FirstStartTime;      /* 0: none yet */
  uint64_t u64StartTime;           /* of the latest start */
  uint64_t u64StopTime;            /* of the latest stop */
  uint64_t u64ExeTime;             /* from the latest start to the latest stop; 0 if that would be negative */
  ZE_KEST_PerfEvent_s stPerfEvent; /* opened anew for every cycle; the totals cover all cycles */
} ZE_KEST_PerformanceMeasure_s;

/* Start and stop one measured processing cycle. Every 50th stop reports, at PRINT level, the averages since
 * the first start: million instructions per second, million cycles per second and the CPU load.
 *
 * The pipeline and filter forms measure only the target selected in debug.h; for anything else they return
 * ZE_KEST_OK. When no target is selected they zero a record that has been used. When a target's name is still
 * missing, their stops report the command that would select this pipeline or filter. The form without
 * Pipeline or Filter in its name always measures.
 * pszPipelineName, pszFilterName: must equal the target's names in full; pstFilter: supplies the names of the
 * filter and its parent pipeline; pszTag: names the measured section in the reports, "(null)" for NULL.
 * ZE_KEST_MISSING_ARGUMENT: any other argument is NULL (reported); ZE_KEST_NOT_INITIALISED: the counters
 * could not be opened or read; times already written are kept; ZE_KEST_OUT_OF_MEMORY (stops only): no memory
 * for the report; the cycle's events are in the totals but the cycle is not counted.
 * Call on the thread that runs the pipeline or filter. A call that does not measure is real-time safe apart
 * from its reports and from closing a group that is still open; one that measures is not real-time safe. */
ZE_KEST_API uint32_t ze_kest_Utility_PerformanceMeasure_StartPipelineMeasure(
    const char *pszPipelineName, ZE_KEST_PerformanceMeasure_s *pstPerformanceMeasure);
ZE_KEST_API uint32_t ze_kest_Utility_PerformanceMeasure_StopPipelineMeasure(
    const char *pszPipelineName, ZE_KEST_PerformanceMeasure_s *pstPerformanceMeasure);
ZE_KEST_API uint32_t
ze_kest_Utility_PerformanceMeasure_StartFilterMeasure(const char *pszPipelineName, const char *pszFilterName,
                                                      ZE_KEST_PerformanceMeasure_s *pstPerformanceMeasure);
ZE_KEST_API uint32_t
ze_kest_Utility_PerformanceMeasure_StopFilterMeasure(const char *pszPipelineName, const char *pszFilterName,
                                                     ZE_KEST_PerformanceMeasure_s *pstPerformanceMeasure);
ZE_KEST_API uint32_t ze_kest_Utility_PerformanceMeasure_StartMeasure(
    const ZE_KEST_Filter_s *pstFilter, ZE_KEST_PerformanceMeasure_s *pstPerformanceMeasure,
    const char *pszTag);
ZE_KEST_API uint32_t ze_kest_Utility_PerformanceMeasure_StopMeasure(
    const ZE_KEST_Filter_s *pstFilter, ZE_KEST_PerformanceMeasure_s *pstPerformanceMeasure,
    const char *pszTag);

#ifdef __cplusplus
}
#endif

#endif
