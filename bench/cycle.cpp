// SPDX-License-Identifier: Apache-2.0
// Rows for the fixed cost of every filter in every cycle, with nothing switched on.
#include <memory>

#include "ze_kest/debug.h"

#include "bench/rows.h"
#include "bench/table.h"
#include "utility/core/report.h"

namespace kest::bench {
namespace {

// The shortest possible code, but not inlined into the benchmark loop.
__attribute__((noinline)) int32_t PlainHook(const ZE_KEST_Filter_s *pstFilter) {
  if (pstFilter == nullptr || pstFilter->pstParentPipeline == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  return ZE_KEST_OK;
}

__attribute__((noinline, cold)) void Report() {
  ReportFault("a report below the level was made");
}

}  // namespace

void AddCycleRows() {
  static ZE_KEST_Pipeline_s stPipeline;
  const auto filter = std::make_shared<ZE_KEST_Filter_s>();
  filter->pstParentPipeline = &stPipeline;
  Row("hook, everything off (limit: two pointers tested)")
      .Add("", Who::kLibrary, [filter] { benchmark::DoNotOptimize(ze_kest_Debug_Filter(filter.get())); })
      .Add("", Who::kLimit, [filter] { benchmark::DoNotOptimize(PlainHook(filter.get())); });
  Row("report below the level (limit: a load, a compare and a branch)")
      .Add("", Who::kLibrary, [] { KEST_REPORT_(ZE_KEST_LEVEL_ENTER, "Bench", "%d\n", 1); })
      .Add("", Who::kLimit, [] {
        if (__atomic_load_n(&u32KestDebugLevel, __ATOMIC_RELAXED) >= ZE_KEST_LEVEL_ENTER) Report();
      });
}

}  // namespace kest::bench
