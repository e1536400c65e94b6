// SPDX-License-Identifier: Apache-2.0
#include "utility/perf/cycle_report.h"

#include <cstdio>

#include "utility/core/report.h"

namespace kest {
namespace {

constexpr size_t kTextBytes = 4096;

// The average of an event per microsecond, multiplied by a factor. 0 while no time has passed since the first
// start, or if the clock has gone back before it.
Figure Average(const ZE_KEST_PerformanceMeasure_s &stMeasure, uint32_t u32Event, uint64_t u64Factor) {
  if (stMeasure.u64StopTime <= stMeasure.u64FirstStartTime) return Figure(0);
  const uint64_t u64Us = stMeasure.u64StopTime - stMeasure.u64FirstStartTime;
  return Figure(stMeasure.stPerfEvent.au64Total[u32Event] * u64Factor / u64Us);
}

void FormatEvent(const char *pszFunction, char *pszOut, size_t sztSize, const char *pszSeparator,
                 const ZE_KEST_PerfEvent_s &stPerfEvent, uint32_t u32Event) {
  *pszOut = '\0';
  const int s32Length = snprintf(pszOut, sztSize, "%s%s:%lld/%lld", pszSeparator, PERF_EVENT_NAME[u32Event],
                                 static_cast<long long>(stPerfEvent.au64Count[u32Event]),
                                 static_cast<long long>(stPerfEvent.au64Total[u32Event]));
  if (s32Length < 0) KEST_ERR_AS(pszFunction, "Error! Fail to snprintf()!\n");
}

}  // namespace

// Figures are in hundredths. The task clock in ns per us is in tenths of a percent, hence its factor of 10.
CycleReport::CycleReport(const ZE_KEST_PerformanceMeasure_s &stMeasure, const char *pszCounterText)
    : u64Count(stMeasure.u64Count),
      mips(Average(stMeasure, 0, 100)),
      mcps(Average(stMeasure, 1, 100)),
      cpuPercent(Average(stMeasure, 2, 10)),
      pszCounters(pszCounterText),
      s64ExeTimeUs(static_cast<long long>(stMeasure.u64ExeTime)),
      s64StopTimeUs(static_cast<long long>(stMeasure.u64StopTime)),
      s64FirstStartTimeUs(static_cast<long long>(stMeasure.u64FirstStartTime)) {}

Owned<char> CounterText(const char *pszFunction, const ZE_KEST_PerfEvent_s &stPerfEvent) {
  auto text = Allocate<char>(kTextBytes);
  if (text == nullptr) {
    KEST_ERR_AS(pszFunction, "[PERF_EVENT]MALLOC Failed\n");
    return text;
  }
  FormatEvent(pszFunction, text.get(), kTextBytes, "", stPerfEvent, 0);
  for (uint32_t u32Event = 1; u32Event < ZE_KEST_PERF_EVENTS; ++u32Event) {
    char szPiece[64];
    FormatEvent(pszFunction, szPiece, sizeof(szPiece), ",", stPerfEvent, u32Event);
    if (ze_kest_Utility_Strncat(text.get(), szPiece, sizeof(szPiece) - 1) == nullptr) {
      KEST_ERR_AS(pszFunction, "Err! Strncat failed!\n");
    }
  }
  return text;
}

}  // namespace kest
