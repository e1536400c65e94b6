// SPDX-License-Identifier: Apache-2.0
// What a measurement belongs to: how it is recognised as the target, and its lines. The lines are printed
// under the name of the function that was called.
#pragma once

#include "utility/core/command_line.h"
#include "utility/perf/cycle_report.h"

namespace kest {

class MeasuredPipeline {
 public:
  explicit MeasuredPipeline(const char *pszPipeline) : pszPipeline_(pszPipeline) {}

  [[nodiscard]] bool IsTarget(uint32_t u32Target) const;
  void PrintStart(const char *pszFunction, uint64_t u64Us) const;
  void PrintReset(const char *pszFunction) const;
  // The command that selects it, when a target of its kind is still without a name.
  void PrintCommand(const char *pszFunction, uint32_t u32Target) const;
  void PrintCycles(const char *pszFunction, const CycleReport &stReport) const;

 private:
  const char *pszPipeline_;
};

class MeasuredFilter {
 public:
  MeasuredFilter(const char *pszPipeline, const char *pszFilter)
      : pszPipeline_(pszPipeline), pszFilter_(pszFilter) {}

  [[nodiscard]] bool IsTarget(uint32_t u32Target) const;
  void PrintStart(const char *pszFunction, uint64_t u64Us) const;
  void PrintReset(const char *pszFunction) const;
  // The command that selects it, when one name of a target of its kind fits and the other is still missing.
  void PrintCommand(const char *pszFunction, uint32_t u32Target) const;
  void PrintCycles(const char *pszFunction, const CycleReport &stReport) const;

 private:
  const char *pszPipeline_;
  const char *pszFilter_;
};

// A section of a filter, measured whatever the target.
class MeasuredSection {
 public:
  MeasuredSection(const char *pszPipeline, const char *pszFilter, const char *pszTag)
      : pszPipeline_(pszPipeline), pszFilter_(pszFilter), pszTag_(Shown(pszTag)) {}

  void PrintStart(const char *pszFunction, uint64_t u64Us) const;
  void PrintCycles(const char *pszFunction, const CycleReport &stReport) const;

 private:
  const char *pszPipeline_;
  const char *pszFilter_;
  const char *pszTag_;
};

}  // namespace kest
