// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

#include "debug/datapath/dump.h"
#include "debug/datapath/hook_filter.h"
#include "debug/datapath/port_lines.h"
#include "debug/datapath/sine_output.h"
#include "debug/datapath/switches.h"

namespace kest {

DataPathSwitches _stKestSwitches = {};

namespace {

// Run in this order; the first one that fails ends the hook.
constexpr uint32_t (*kSteps[])(const ZE_KEST_Filter_s *pstFilter) = {
    PrintPortLines,
    [](const ZE_KEST_Filter_s *pstFilter) { return _ZE_KEST_Debug_Dump(pstFilter, kInputDump); },
    [](const ZE_KEST_Filter_s *pstFilter) { return _ZE_KEST_Debug_Dump(pstFilter, kOutputDump); },
    _ZE_KEST_Debug_OutputSineWave,
    [](const ZE_KEST_Filter_s *pstFilter) {
      return static_cast<uint32_t>(ze_kest_Debug_MeasureLatency(pstFilter, ZE_KEST_LATENCY_END));
    },
};

// Out of line, so that a cycle with everything off stays short.
__attribute__((noinline)) int32_t RunSteps(const ZE_KEST_Filter_s *pstFilter) {
  for (const auto pfnStep : kSteps) {
    const uint32_t u32Result = pfnStep(pstFilter);
    if (u32Result != ZE_KEST_OK) return static_cast<int32_t>(u32Result);
  }
  return ZE_KEST_OK;
}

}  // namespace
}  // namespace kest

int32_t ze_kest_Debug_Filter(const ZE_KEST_Filter_s *pstFilter) {
  if (!kest::HasPipeline(pstFilter)) return static_cast<int32_t>(kest::RefuseFilter(__func__, pstFilter));
  return kest::IsAnyHookSwitchOn() ? kest::RunSteps(pstFilter) : ZE_KEST_OK;
}
