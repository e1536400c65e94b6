// SPDX-License-Identifier: Apache-2.0
// What can be measured: it tells whether it is the selected target and prints its own lines. The lines appear
// under the name of the interface function that was called.
#pragma once

#include "utility/core/missing_text.h"
#include "utility/perf/cycle_report.h"

namespace kest {

// A pipeline, a filter, or a section of a filter, which is measured whatever target is selected.
class Measured {
 public:
  explicit Measured(const char *pszPipeline) : pszPipeline_(pszPipeline) {}
  Measured(const char *pszPipeline, const char *pszFilter)
      : pszPipeline_(pszPipeline), pszFilter_(pszFilter) {}
  Measured(const char *pszPipeline, const char *pszFilter, const char *pszTag)
      : pszPipeline_(pszPipeline), pszFilter_(pszFilter), pszTag_(Shown(pszTag)) {}

  [[nodiscard]] bool IsTarget(uint32_t u32Target) const;
  void PrintStart(const char *pszFunction, uint64_t u64Us) const;
  void PrintReset(const char *pszFunction) const;
  // Prints the command that selects this pipeline or filter, when its kind of target has been selected with a
  // name still missing and the other one, if there are two, is its own.
  void PrintCommand(const char *pszFunction, uint32_t u32Target) const;
  void PrintCycles(const char *pszFunction, const CycleReport &stReport) const;

 private:
  [[nodiscard]] bool IsOfKind(uint32_t u32Target) const;
  [[nodiscard]] bool IsNameMissing() const;

  // The lines name it "[pipeline]", "[pipeline:filter]" or "[pipeline:filter][tag]".
  [[nodiscard]] const char *Colon() const { return pszFilter_ == nullptr ? "" : ":"; }
  [[nodiscard]] const char *Filter() const { return pszFilter_ == nullptr ? "" : pszFilter_; }
  [[nodiscard]] const char *Bracket() const { return pszTag_ == nullptr ? "" : "]["; }
  [[nodiscard]] const char *Tag() const { return pszTag_ == nullptr ? "" : pszTag_; }

  const char *pszPipeline_;
  const char *pszFilter_ = nullptr;
  const char *pszTag_ = nullptr;
};

}  // namespace kest
