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

bool MeasuredPipeline::IsTarget(uint32_t u32Target) const {
  return u32Target == ZE_KEST_TARGET_PIPELINE &&
         Equal(pszPipeline_, NameCopy(szKestPerfEventTargetName1).c_str());
}

void MeasuredPipeline::PrintStart(const char *pszFunction, uint64_t u64Us) const {
  KEST_PRINT_AS(pszFunction, "[PERF_EVENT][%s]Start to record Perf Event(timestamp=%lld us)\n", pszPipeline_,
                static_cast<long long>(u64Us));
}

void MeasuredPipeline::PrintReset(const char *pszFunction) const {
  KEST_PRINT_AS(pszFunction, "[PERF_EVENT][%s]Reset Perf Event Records\n", pszPipeline_);
}

void MeasuredPipeline::PrintCommand(const char *pszFunction, uint32_t u32Target) const {
  if (u32Target != ZE_KEST_TARGET_PIPELINE) return;
  if (!IsEmpty(NameCopy(szKestPerfEventTargetName1).c_str())) return;
  KEST_PRINT_AS(pszFunction, "[PERF_EVENT][echo kest_perf_event_target=pipeline,%s >D]\n", pszPipeline_);
}

void MeasuredPipeline::PrintCycles(const char *pszFunction, const CycleReport &stReport) const {
  KEST_PRINT_AS(pszFunction,
                "[PERF_EVENT][%llu][%s][MIPS=%lld.%02lld][MCPS=%lld.%02lld][CPU%%=%lld.%02lld%%]"
                "(%s,exe_time:%lld us,curr_time:%lld us,start_time:%lld us)\n",
                stReport.u64Count, pszPipeline_, stReport.mips.s64Whole, stReport.mips.s64Hundredths,
                stReport.mcps.s64Whole, stReport.mcps.s64Hundredths, stReport.cpuPercent.s64Whole,
                stReport.cpuPercent.s64Hundredths, stReport.pszCounters, stReport.s64ExeTimeUs,
                stReport.s64StopTimeUs, stReport.s64FirstStartTimeUs);
}

bool MeasuredFilter::IsTarget(uint32_t u32Target) const {
  return u32Target == ZE_KEST_TARGET_FILTER &&
         Equal(pszPipeline_, NameCopy(szKestPerfEventTargetName1).c_str()) &&
         Equal(pszFilter_, NameCopy(szKestPerfEventTargetName2).c_str());
}

void MeasuredFilter::PrintStart(const char *pszFunction, uint64_t u64Us) const {
  KEST_PRINT_AS(pszFunction, "[PERF_EVENT][%s:%s]Start to record Perf Event(timestamp=%lld us)\n",
                pszPipeline_, pszFilter_, static_cast<long long>(u64Us));
}

void MeasuredFilter::PrintReset(const char *pszFunction) const {
  KEST_PRINT_AS(pszFunction, "[PERF_EVENT][%s:%s]Reset Perf Event Records\n", pszPipeline_, pszFilter_);
}

void MeasuredFilter::PrintCommand(const char *pszFunction, uint32_t u32Target) const {
  if (u32Target != ZE_KEST_TARGET_FILTER) return;
  const NameCopy name1(szKestPerfEventTargetName1);
  const NameCopy name2(szKestPerfEventTargetName2);
  const bool bFilterMissing = Equal(pszPipeline_, name1.c_str()) && IsEmpty(name2.c_str());
  const bool bPipelineMissing = IsEmpty(name1.c_str()) && Equal(pszFilter_, name2.c_str());
  if (!bFilterMissing && !bPipelineMissing) return;
  KEST_PRINT_AS(pszFunction, "[PERF_EVENT][echo kest_perf_event_target=filter,%s:%s >D]\n", pszPipeline_,
                pszFilter_);
}

void MeasuredFilter::PrintCycles(const char *pszFunction, const CycleReport &stReport) const {
  KEST_PRINT_AS(pszFunction,
                "[PERF_EVENT][%llu][%s:%s][MIPS=%lld.%02lld][MCPS=%lld.%02lld][CPU%%=%lld.%02lld%%]"
                "(%s,exe_time:%lld us,curr_time:%lld us,start_time:%lld us)\n",
                stReport.u64Count, pszPipeline_, pszFilter_, stReport.mips.s64Whole,
                stReport.mips.s64Hundredths, stReport.mcps.s64Whole, stReport.mcps.s64Hundredths,
                stReport.cpuPercent.s64Whole, stReport.cpuPercent.s64Hundredths, stReport.pszCounters,
                stReport.s64ExeTimeUs, stReport.s64StopTimeUs, stReport.s64FirstStartTimeUs);
}

void MeasuredSection::PrintStart(const char *pszFunction, uint64_t u64Us) const {
  KEST_PRINT_AS(pszFunction, "[%s:%s][%s]Start to record Perf Event(timestamp=%lld us)\n", pszPipeline_,
                pszFilter_, pszTag_, static_cast<long long>(u64Us));
}

void MeasuredSection::PrintCycles(const char *pszFunction, const CycleReport &stReport) const {
  KEST_PRINT_AS(pszFunction,
                "[PERF_EVENT][%llu][%s:%s][%s][MIPS=%lld.%02lld][MCPS=%lld.%02lld][CPU%%=%lld.%02lld%%]"
                "(%s,exe_time:%lld us,curr_time:%lld us,start_time:%lld us)\n",
                stReport.u64Count, pszPipeline_, pszFilter_, pszTag_, stReport.mips.s64Whole,
                stReport.mips.s64Hundredths, stReport.mcps.s64Whole, stReport.mcps.s64Hundredths,
                stReport.cpuPercent.s64Whole, stReport.cpuPercent.s64Hundredths, stReport.pszCounters,
                stReport.s64ExeTimeUs, stReport.s64StopTimeUs, stReport.s64FirstStartTimeUs);
}

}  // namespace kest
