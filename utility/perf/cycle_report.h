// SPDX-License-Identifier: Apache-2.0
// The contents of the report on measured cycles: averages since the first start, and the counters as text.
#pragma once

#include "ze_kest/performance.h"

#include "utility/core/owned_memory.h"

namespace kest {

// A figure in hundredths, split for printing.
struct Figure {
  explicit Figure(uint64_t u64Hundredths)
      : s64Whole(static_cast<long long>(u64Hundredths / 100)),
        s64Hundredths(static_cast<long long>(u64Hundredths % 100)) {}

  long long s64Whole;
  long long s64Hundredths;
};

struct CycleReport {
  CycleReport(const ZE_KEST_PerformanceMeasure_s &stMeasure, const char *pszCounterText);

  unsigned long long u64Count;
  Figure mips;
  Figure mcps;
  Figure cpuPercent;
  const char *pszCounters;
  long long s64ExeTimeUs;
  long long s64StopTimeUs;
  long long s64FirstStartTimeUs;
};

// "NAME:COUNT/TOTAL" for every event, separated by commas; empty when memory is exhausted. Failures are
// reported under the given function name.
Owned<char> CounterText(const char *pszFunction, const ZE_KEST_PerfEvent_s &stPerfEvent);

}  // namespace kest
