// SPDX-License-Identifier: Apache-2.0
// What every filter pays in every cycle with nothing switched on.
#include <algorithm>
#include <array>
#include <memory>

#include "ze_kest/debug.h"
#include "ze_kest/port.h"

#include "bench/rows.h"
#include "bench/table.h"
#include "utility/core/report.h"

namespace kest::bench {
namespace {

struct EightPorts {
  EightPorts() {
    stFilter.pstParentPipeline = &stPipeline;
    stFilter.u32InPortCount = ZE_KEST_MAX_PORTS;
    stFilter.sztMaxInPcmProcessSize = stFilter.sztMaxOutPcmProcessSize = ZE_KEST_NO_BOUND;
    for (uint32_t i = 0; i < ZE_KEST_MAX_PORTS; ++i) {
      astPort[i].bConnected = 1;
      astPort[i].stPcm.sztPcmRingSamples = 4096;
      astPort[i].stPcm.sztPcmLevel = 1024 + 64 * i;
      stFilter.apstInPort[i] = &astPort[i];
    }
  }
  ZE_KEST_Pipeline_s stPipeline = {};
  ZE_KEST_Filter_s stFilter = {};
  std::array<ZE_KEST_Port_s, ZE_KEST_MAX_PORTS> astPort = {};
};

// As short as it can be, and not part of the loop that calls it.
__attribute__((noinline)) uint32_t PlainProcessSize(const ZE_KEST_Filter_s *pstFilter) {
  uint32_t u32Least = pstFilter->sztMaxInPcmProcessSize;
  for (uint32_t i = 0; i < pstFilter->u32InPortCount; ++i) {
    const ZE_KEST_Port_s *pstPort = pstFilter->apstInPort[i];
    if (pstPort == nullptr || pstPort->bConnected == 0 || pstPort->stPcm.sztPcmRingSamples == 0) continue;
    u32Least = std::min(u32Least, pstPort->stPcm.sztPcmLevel - pstPort->stPcm.sztPcmReadSize);
  }
  return u32Least;
}

__attribute__((noinline)) int32_t PlainHook(const ZE_KEST_Filter_s *pstFilter) {
  if (pstFilter == nullptr || pstFilter->pstParentPipeline == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  return ZE_KEST_OK;
}

__attribute__((noinline, cold)) void Report() {
  ReportFault("a report below the level was made");
}

}  // namespace

void AddCycleRows() {
  const auto ports = std::make_shared<EightPorts>();
  Row("hook, everything off (limit: two pointers tested)")
      .Add("", Who::kLibrary, [ports] { benchmark::DoNotOptimize(ze_kest_Debug_Filter(&ports->stFilter)); })
      .Add("", Who::kLimit, [ports] { benchmark::DoNotOptimize(PlainHook(&ports->stFilter)); });
  Row("process size of eight ports (limit: the least of eight levels)")
      .Add("", Who::kLibrary,
           [ports] {
             uint32_t u32Size = 0;
             ze_kest_Utility_CalculateInputPortPcmProcessSize(&ports->stFilter, &u32Size);
             benchmark::DoNotOptimize(u32Size);
           })
      .Add("", Who::kLimit, [ports] { benchmark::DoNotOptimize(PlainProcessSize(&ports->stFilter)); });
  Row("report below the level (limit: a load, a compare and a branch)")
      .Add("", Who::kLibrary, [] { KEST_REPORT_(ZE_KEST_LEVEL_ENTER, 4, "", "Bench", "%d\n", 1); })
      .Add("", Who::kLimit, [] {
        if (__atomic_load_n(&u32KestDebugLevel, __ATOMIC_RELAXED) >= ZE_KEST_LEVEL_ENTER) Report();
      });
}

}  // namespace kest::bench
