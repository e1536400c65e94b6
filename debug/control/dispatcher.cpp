// SPDX-License-Identifier: Apache-2.0
#include "debug/control/dispatcher.h"

#include "ze_kest/debug.h"

#include "debug/base/started.h"
#include "debug/control/command_table.h"
#include "debug/datapath/dump.h"
#include "debug/datapath/io_debug_command.h"
#include "debug/datapath/io_trace.h"
#include "debug/datapath/latency.h"
#include "debug/requests/requests.h"
#include "debug/thread/thread_commands.h"
#include "utility/core/report.h"

namespace kest {
namespace {

// Runs the command on a copy of the line, split the way the command wants it.
uint32_t Try(const Command &command, const char *pszLine) {
  CommandLine line(pszLine);
  if (line.Rest() == nullptr) return ZE_KEST_OUT_OF_MEMORY;
  const char *pszKeyword =
      command.pszKeyword == kEveryLine ? nullptr : line.Next(command.pstSplit->pszKeywordEnd);
  if (!IsFor(command, pszKeyword, line)) return ZE_KEST_INVALID_ARGUMENT;
  return Run(command, kDispatcher, line);
}

using Handler = uint32_t (*)(const char *pszLine);

// Tried in this order, which matters: a line of another command changes what four of them have published.
constexpr Handler kHandlers[] = {
    _ZE_KEST_Debug_Cmd_WatchCurrentTids,
    _ZE_KEST_Debug_Cmd_WatchTid,
    _ZE_KEST_Debug_Cmd_PthreadSignal,
    _ZE_KEST_Debug_Cmd_Io,
    _ZE_KEST_Debug_Cmd_SetPerfEventTarget,  // drops its target
    _ZE_KEST_Debug_Cmd_DumpIo,
    _ZE_KEST_Debug_Cmd_DebugIo,
    _ZE_KEST_Debug_Cmd_MeasureLatency,
    _ZE_KEST_Debug_Cmd_QueryProcessStatus,  // drops its query
    _ZE_KEST_Debug_Cmd_SendTestTone,        // drops its request
    _ZE_KEST_Debug_Cmd_CalPcmLev,           // makes its request, to every filter
    _ZE_KEST_Debug_Cmd_CalculateDataRate,
};

uint32_t OfferToHandlers(const char *pszLine) {
  uint32_t u32Result = ZE_KEST_INVALID_ARGUMENT;
  for (const Handler pfnHandler : kHandlers) {
    u32Result = pfnHandler(pszLine);
    if (u32Result == ZE_KEST_OK) break;
  }
  return u32Result;
}

}  // namespace

uint32_t _ZE_KEST_Debug_SetParameter(const char *pszLine) {
  KEST_PRINT("\n");
  for (const Command &command : Commands()) {
    // A command that fails leaves the line to the commands after it.
    if (Try(command, pszLine) == ZE_KEST_OK) return ZE_KEST_OK;
  }
  return OfferToHandlers(pszLine);
}

}  // namespace kest

uint32_t ze_kest_Debug_SetParameter(const char *pszParameterPairs) {
  KEST_REQUIRE(pszParameterPairs != nullptr, "pszParameterPairs is NULL.\n");
  KEST_REQUIRE_OR(kest::IsStarted(), ZE_KEST_NOT_INITIALISED, "Err! Not initialized yet!\n");
  KEST_PRINT("pszParameterPairs:%s\n", pszParameterPairs);
  return kest::_ZE_KEST_Debug_SetParameter(pszParameterPairs);
}
