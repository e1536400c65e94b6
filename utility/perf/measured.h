// SPDX-License-Identifier: Apache-2.0
// What can be measured: each class tells whether it is the selected target and prints its own lines. The
// lines appear under the name of the interface function that was called.
#pragma once

#include "utility/core/missing_text.h"
#include "utility/perf/cycle_report.h"

namespace kest {

class MeasuredPipeline {
 public:
  explicit MeasuredPipeline(const char *pszPipeline) : pszPipeline_(pszPipeline) {}

  [[nodiscard]] bool IsTarget(uint32_t u32Target) const;
  void PrintStart(const char *pszFunction, uint64_t u64Us) const;
  void PrintReset(const char *pszFunction) const;
  // Prints the command that selects this pipeline, when a pipeline target has been selected without a name.
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
  // Prints the command that selects this filter, when a filter target has one matching name and the other is
  // still missing.
  void PrintCommand(const char *pszFunction, uint32_t u32Target) const;
  void PrintCycles(const char *pszFunction, const CycleReport &stReport) const;

 private:
  const char *pszPipeline_;
  const char *pszFilter_;
};

// A section of a filter; it is measured whatever target is selected.
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
