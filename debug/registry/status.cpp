// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/status.h"

#include "debug/base/debug_mutex.h"
#include "debug/registry/filter_status.h"
#include "debug/registry/listing.h"
#include "debug/registry/registry.h"
#include "debug/registry/sad.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_PrintStatusInfo";

void PrintNode(const ZE_KEST_DebugInfo_s &info) {
  if (info.pstFilter == nullptr) {
    KEST_PRINT_AS(kFunction, "p:%-20s =================\n", info.szName);
    return;
  }
  // PrintKindStatus continues this line.
  KEST_PRINT_AS(kFunction, "p:%-20s f:%-15s", info.szName, info.pstFilter->szName);
  PrintKindStatus(*info.pstFilter);
}

void PrintGraph() KEST_REQUIRES_LOCK(kDebugLock) {
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    if (info.pstFilter != nullptr) continue;
    KEST_PRINT_AS(kFunction, "%s\n", info.szName);
    PrintConnections(kFunction, info);
  }
}

}  // namespace

void _ZE_KEST_Debug_PrintStatusInfo() {
  PrintRule(__func__);
  KEST_PRINT("[AudioStatusInfo]\n");
  _ZE_KEST_Debug_PrintSadInfo();
  const HoldingDebug holding;
  if (_pstKestDebugInfoList == nullptr) PrintRule(__func__);
  for (const ZE_KEST_DebugInfo_s &info : Registry())
    PrintNode(info);
  PrintRule(__func__);
  PrintGraph();
  PrintRule(__func__);
}

}  // namespace kest
