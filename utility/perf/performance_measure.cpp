// SPDX-License-Identifier: Apache-2.0
// Measures processing cycles, each between a start and a stop.
#include "ze_kest/debug.h"
#include "ze_kest/performance.h"

#include "utility/core/monotonic_us.h"
#include "utility/core/report.h"
#include "utility/perf/cycle_report.h"
#include "utility/perf/measured.h"
#include "utility/port/port_walk.h"

namespace {

using Measure = ZE_KEST_PerformanceMeasure_s;

constexpr uint64_t kCyclesPerReport = 50;

bool OpenAndEnable(ZE_KEST_PerfEvent_s &stPerfEvent) {
  if (ze_kest_Utility_PerfEvent_Open(&stPerfEvent) != ZE_KEST_OK) return false;
  if (ze_kest_Utility_PerfEvent_Enable(&stPerfEvent) == ZE_KEST_OK) return true;
  ze_kest_Utility_PerfEvent_Close(&stPerfEvent);
  return false;
}

// Deliberate: the group stays open after a failed read; the next start reopens it.
bool ReadAndClose(ZE_KEST_PerfEvent_s &stPerfEvent) {
  return ze_kest_Utility_PerfEvent_GetCurrentEventCount(&stPerfEvent) == ZE_KEST_OK &&
         ze_kest_Utility_PerfEvent_Close(&stPerfEvent) == ZE_KEST_OK;
}

uint32_t StartCycle(const char *pszFunction, const kest::Measured &measured, Measure &stMeasure) {
  if (!OpenAndEnable(stMeasure.stPerfEvent)) return ZE_KEST_NOT_INITIALISED;
  stMeasure.u64StartTime = kest::MonotonicUs();
  if (stMeasure.u64FirstStartTime == 0) {
    stMeasure.u64FirstStartTime = stMeasure.u64StartTime;
    measured.PrintStart(pszFunction, stMeasure.u64FirstStartTime);
  }
  return ZE_KEST_OK;
}

uint32_t StopCycle(const char *pszFunction, const kest::Measured &measured, Measure &stMeasure) {
  stMeasure.u64StopTime = kest::MonotonicUs();
  if (!ReadAndClose(stMeasure.stPerfEvent)) return ZE_KEST_NOT_INITIALISED;
  const bool bForward = stMeasure.u64StopTime >= stMeasure.u64StartTime;
  stMeasure.u64ExeTime = bForward ? stMeasure.u64StopTime - stMeasure.u64StartTime : 0;
  const auto counters = kest::CounterText(pszFunction, stMeasure.stPerfEvent);
  if (counters == nullptr) return ZE_KEST_OUT_OF_MEMORY;
  ++stMeasure.u64Count;
  if (stMeasure.u64Count % kCyclesPerReport == 0) {
    measured.PrintCycles(pszFunction, kest::CycleReport(stMeasure, counters.get()));
  }
  return ZE_KEST_OK;
}

bool IsLeftOver(uint32_t u32Target, const Measure &stMeasure) {
  return u32Target == ZE_KEST_TARGET_NONE && stMeasure.u64Count != 0;
}

// The group may still be open: the target can be dropped in the middle of a measured cycle.
void Clear(Measure &stMeasure) {
  if (stMeasure.stPerfEvent.bInit == 1) ze_kest_Utility_PerfEvent_Close(&stMeasure.stPerfEvent);
  stMeasure = {};
}

uint32_t StartTarget(const char *pszFunction, const kest::Measured &measured, Measure &stMeasure) {
  const uint32_t u32Target = kest::Load(u32KestPerfEventTarget);
  if (measured.IsTarget(u32Target)) return StartCycle(pszFunction, measured, stMeasure);
  if (!IsLeftOver(u32Target, stMeasure)) return ZE_KEST_OK;
  Clear(stMeasure);
  measured.PrintReset(pszFunction);
  return ZE_KEST_OK;
}

uint32_t StopTarget(const char *pszFunction, const kest::Measured &measured, Measure &stMeasure) {
  const uint32_t u32Target = kest::Load(u32KestPerfEventTarget);
  if (measured.IsTarget(u32Target)) return StopCycle(pszFunction, measured, stMeasure);
  measured.PrintCommand(pszFunction, u32Target);
  if (!IsLeftOver(u32Target, stMeasure)) return ZE_KEST_OK;
  Clear(stMeasure);
  return ZE_KEST_OK;
}

using Operation = uint32_t (*)(const char *pszFunction, const kest::Measured &measured, Measure &stMeasure);

uint32_t OnPipeline(const char *pszFunction, Operation pfnOperation, const char *pszPipelineName,
                    Measure *pstMeasure) {
  KEST_REQUIRE_OR_AS(pszFunction, pszPipelineName != nullptr, ZE_KEST_MISSING_ARGUMENT,
                     "pszPipelineName is NULL.\n");
  KEST_REQUIRE_OR_AS(pszFunction, pstMeasure != nullptr, ZE_KEST_MISSING_ARGUMENT,
                     "pstPerformanceMeasure is NULL.\n");
  return pfnOperation(pszFunction, kest::Measured(pszPipelineName), *pstMeasure);
}

uint32_t OnFilter(const char *pszFunction, Operation pfnOperation, const char *pszPipelineName,
                  const char *pszFilterName, Measure *pstMeasure) {
  KEST_REQUIRE_OR_AS(pszFunction, pszPipelineName != nullptr, ZE_KEST_MISSING_ARGUMENT,
                     "pszPipelineName is NULL.\n");
  KEST_REQUIRE_OR_AS(pszFunction, pszFilterName != nullptr, ZE_KEST_MISSING_ARGUMENT,
                     "pszFilterName is NULL.\n");
  KEST_REQUIRE_OR_AS(pszFunction, pstMeasure != nullptr, ZE_KEST_MISSING_ARGUMENT,
                     "pstPerformanceMeasure is NULL.\n");
  return pfnOperation(pszFunction, kest::Measured(pszPipelineName, pszFilterName), *pstMeasure);
}

uint32_t OnSection(const char *pszFunction, Operation pfnOperation, const ZE_KEST_Filter_s *pstFilter,
                   Measure *pstMeasure, const char *pszTag) {
  KEST_REQUIRE_OR_AS(pszFunction, pstFilter != nullptr, ZE_KEST_MISSING_ARGUMENT, "pstFilter is NULL.\n");
  KEST_REQUIRE_OR_AS(pszFunction, pstMeasure != nullptr, ZE_KEST_MISSING_ARGUMENT,
                     "pstPerformanceMeasure is NULL.\n");
  const kest::Measured section(kest::PipelineName(*pstFilter), pstFilter->szName, pszTag);
  return pfnOperation(pszFunction, section, *pstMeasure);
}

}  // namespace

uint32_t ze_kest_Utility_PerformanceMeasure_StartPipelineMeasure(const char *pszPipelineName,
                                                                 Measure *pstPerformanceMeasure) {
  return OnPipeline(__func__, StartTarget, pszPipelineName, pstPerformanceMeasure);
}

uint32_t ze_kest_Utility_PerformanceMeasure_StopPipelineMeasure(const char *pszPipelineName,
                                                                Measure *pstPerformanceMeasure) {
  return OnPipeline(__func__, StopTarget, pszPipelineName, pstPerformanceMeasure);
}

uint32_t ze_kest_Utility_PerformanceMeasure_StartFilterMeasure(const char *pszPipelineName,
                                                               const char *pszFilterName,
                                                               Measure *pstPerformanceMeasure) {
  return OnFilter(__func__, StartTarget, pszPipelineName, pszFilterName, pstPerformanceMeasure);
}

uint32_t ze_kest_Utility_PerformanceMeasure_StopFilterMeasure(const char *pszPipelineName,
                                                              const char *pszFilterName,
                                                              Measure *pstPerformanceMeasure) {
  return OnFilter(__func__, StopTarget, pszPipelineName, pszFilterName, pstPerformanceMeasure);
}

uint32_t ze_kest_Utility_PerformanceMeasure_StartMeasure(const ZE_KEST_Filter_s *pstFilter,
                                                         Measure *pstPerformanceMeasure, const char *pszTag) {
  return OnSection(__func__, StartCycle, pstFilter, pstPerformanceMeasure, pszTag);
}

uint32_t ze_kest_Utility_PerformanceMeasure_StopMeasure(const ZE_KEST_Filter_s *pstFilter,
                                                        Measure *pstPerformanceMeasure, const char *pszTag) {
  return OnSection(__func__, StopCycle, pstFilter, pstPerformanceMeasure, pszTag);
}
