// SPDX-License-Identifier: Apache-2.0
#include "debug/control/dispatcher.h"

#include "ze_kest/utility.h"

#include "debug/base/command_line.h"
#include "debug/base/started.h"
#include "debug/control/command_table.h"
#include "debug/datapath/dump.h"
#include "debug/datapath/io_debug_command.h"
#include "debug/datapath/io_trace.h"
#include "debug/datapath/latency.h"
#include "debug/requests/perf_target.h"
#include "debug/requests/process_status.h"
#include "debug/requests/requests.h"
#include "debug/thread/thread_commands.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"

namespace kest {
namespace {

bool TakesNoValue(const Command &command) {
  return command.pszValue != kAnyValue && *command.pszValue == '\0';
}

bool TakesValue(const Command &command, const char *pszValue) {
  if (IsEmpty(pszValue)) return false;
  return command.pszValue == kAnyValue || ze_kest_Utility_Strcmp(pszValue, command.pszValue) == 0;
}

// Splits a copy of the line the way the command wants it and runs the command if keyword and value match.
uint32_t Try(const Command &command, const char *pszLine) {
  const Owned<char> copy = Duplicate(pszLine);
  char *pszRest = copy.get();
  if (pszRest == nullptr) return ZE_KEST_OUT_OF_MEMORY;
  if (command.pszKeyword == kEveryLine) return command.pfnAction({nullptr, pszRest, command.u32Constant});
  const char *pszKeyword = ze_kest_Utility_Strsep(&pszRest, command.pstSplit->pszKeywordEnd);
  if (ze_kest_Utility_Strcmp(pszKeyword, command.pszKeyword) != 0) return ZE_KEST_INVALID_ARGUMENT;

  char *pszValue = nullptr;
  if (!TakesNoValue(command)) {
    pszValue = ze_kest_Utility_Strsep(&pszRest, command.pstSplit->pszValueEnd);
    if (!TakesValue(command, pszValue)) return ZE_KEST_INVALID_ARGUMENT;
  }
  if (command.pszConfirmation != nullptr) {
    KEST_PRINT_AS(kDispatcher, "%s", command.pszConfirmation);
  }
  return command.pfnAction({pszValue, pszRest, command.u32Constant});
}

using Handler = uint32_t (*)(const char *pszLine);

// Tried in this order, which matters: some handlers act on lines of other commands. The comment after each
// handler says what it does then.
constexpr Handler kHandlers[] = {
    _ZE_KEST_Debug_Cmd_WatchCurrentTids,    // nothing
    _ZE_KEST_Debug_Cmd_WatchTid,            // nothing
    _ZE_KEST_Debug_Cmd_PthreadSignal,       // nothing
    _ZE_KEST_Debug_Cmd_Io,                  // nothing
    _ZE_KEST_Debug_Cmd_SetPerfEventTarget,  // drops its target
    _ZE_KEST_Debug_Cmd_DumpIo,              // nothing
    _ZE_KEST_Debug_Cmd_DebugIo,             // nothing
    _ZE_KEST_Debug_Cmd_MeasureLatency,      // nothing
    _ZE_KEST_Debug_Cmd_QueryProcessStatus,  // drops its query
    _ZE_KEST_Debug_Cmd_SendTestTone,        // drops its request
    _ZE_KEST_Debug_Cmd_CalPcmLev,           // makes its request, to every filter
    _ZE_KEST_Debug_Cmd_CalculateDataRate,   // nothing
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
