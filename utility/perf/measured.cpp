// SPDX-License-Identifier: Apache-2.0
#include "utility/perf/measured.h"

#include "ze_kest/debug.h"

#include "utility/core/report.h"
#include "utility/core/shared_name.h"

namespace kest {
namespace {

bool Equal(const char *pszA, const char *pszB) {
  return ze_kest_Utility_Strcmp(pszA, pszB) == 0;
}

}  // namespace

bool Measured::IsOfKind(uint32_t u32Target) const {
  return u32Target == (pszFilter_ == nullptr ? ZE_KEST_TARGET_PIPELINE : ZE_KEST_TARGET_FILTER);
}

bool Measured::IsTarget(uint32_t u32Target) const {
  return IsOfKind(u32Target) && Equal(pszPipeline_, NameCopy(szKestPerfEventTargetName1).c_str()) &&
         (pszFilter_ == nullptr || Equal(pszFilter_, NameCopy(szKestPerfEventTargetName2).c_str()));
}

// Deliberate: the start line of a section does not begin with the mark of the others.
void Measured::PrintStart(const char *pszFunction, uint64_t u64Us) const {
  KEST_PRINT_AS(pszFunction, "%s[%s%s%s%s%s]Start to record Perf Event(timestamp=%lld us)\n",
                pszTag_ == nullptr ? "[PERF_EVENT]" : "", pszPipeline_, Colon(), Filter(), Bracket(), Tag(),
                static_cast<long long>(u64Us));
}

void Measured::PrintReset(const char *pszFunction) const {
  KEST_PRINT_AS(pszFunction, "[PERF_EVENT][%s%s%s]Reset Perf Event Records\n", pszPipeline_, Colon(),
                Filter());
}

bool Measured::IsNameMissing() const {
  const NameCopy name1(szKestPerfEventTargetName1);
  const NameCopy name2(szKestPerfEventTargetName2);
  if (pszFilter_ == nullptr) return IsEmpty(name1.c_str());
  return (Equal(pszPipeline_, name1.c_str()) && IsEmpty(name2.c_str())) ||
         (IsEmpty(name1.c_str()) && Equal(pszFilter_, name2.c_str()));
}

void Measured::PrintCommand(const char *pszFunction, uint32_t u32Target) const {
  if (!IsOfKind(u32Target) || !IsNameMissing()) return;
  KEST_PRINT_AS(pszFunction, "[PERF_EVENT][echo kest_perf_event_target=%s,%s%s%s >D]\n",
                pszFilter_ == nullptr ? "pipeline" : "filter", pszPipeline_, Colon(), Filter());
}

void Measured::PrintCycles(const char *pszFunction, const CycleReport &stReport) const {
  KEST_PRINT_AS(pszFunction,
                "[PERF_EVENT][%llu][%s%s%s%s%s][MIPS=%lld.%02lld][MCPS=%lld.%02lld][CPU%%=%lld.%02lld%%]"
                "(%s,exe_time:%lld us,curr_time:%lld us,start_time:%lld us)\n",
                stReport.u64Count, pszPipeline_, Colon(), Filter(), Bracket(), Tag(), stReport.mips.s64Whole,
                stReport.mips.s64Hundredths, stReport.mcps.s64Whole, stReport.mcps.s64Hundredths,
                stReport.cpuPercent.s64Whole, stReport.cpuPercent.s64Hundredths, stReport.pszCounters,
                stReport.s64ExeTimeUs, stReport.s64StopTimeUs, stReport.s64FirstStartTimeUs);
}

}  // namespace kest
