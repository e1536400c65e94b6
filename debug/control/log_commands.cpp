// SPDX-License-Identifier: Apache-2.0
#include "debug/control/log_commands.h"

#include "debug/base/shared_settings.h"
#include "debug/control/startup.h"
#include "debug/log/log_file.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"

namespace kest {
namespace {

// Deliberate: the number is stored before it is checked. One that is out of range is stored as the limit and
// then refused.
bool StoreNumber(const char *pszText, void (*pfnStore)(int32_t), int32_t *ps32Value) {
  *ps32Value = ParseS32(pszText);
  pfnStore(*ps32Value);
  if (!IsOutOfRange(*ps32Value)) return true;
  KEST_PRINT_AS(kDispatcher, "format error: %s\n", pszText);
  return false;
}

}  // namespace

uint32_t RestartLog(const CommandArguments & /*arguments*/) {
  return _ZE_KEST_Debug_LogRestart();
}

uint32_t SwitchLogToConsole(const CommandArguments &arguments) {
  return _ZE_KEST_Debug_SetMode(kLogToConsole, static_cast<int>(arguments.u32Constant));
}

uint32_t SwitchLogToFile(const CommandArguments &arguments) {
  return _ZE_KEST_Debug_SetMode(kLogToFile, static_cast<int>(arguments.u32Constant));
}

uint32_t SetLogLevel(const CommandArguments &arguments) {
  Store(u32KestDebugLevel, arguments.u32Constant);
  _ZE_KEST_Debug_SetShm();
  KEST_INFO_AS(kDispatcher, "Test:<INFO>\n");
  KEST_WRN_AS(kDispatcher, "Test:<WRN>\n");
  KEST_ERR_AS(kDispatcher, "Test:<ERR>\n");
  return ZE_KEST_OK;
}

uint32_t SetLogSize(const CommandArguments &arguments) {
  int32_t s32Value = 0;
  if (!StoreNumber(arguments.pszValue, SetLogSizeMax, &s32Value)) return ZE_KEST_INVALID_ARGUMENT;
  KEST_PRINT_AS(kDispatcher, "LogSizeMax:%d\n", s32Value);
  return ZE_KEST_OK;
}

uint32_t SwitchAtrace(const CommandArguments &arguments) {
  Store(bKestAtraceEnable, static_cast<uint8_t>(arguments.u32Constant));
  return ZE_KEST_OK;
}

uint32_t SetMonitorSleep(const CommandArguments &arguments) {
  int32_t s32Value = 0;
  if (!StoreNumber(arguments.pszValue, SetMonitorSleepTime, &s32Value)) return ZE_KEST_INVALID_ARGUMENT;
  KEST_PRINT_AS(kDispatcher, "sleep time:%d ms\n", s32Value);
  return ZE_KEST_OK;
}

}  // namespace kest
