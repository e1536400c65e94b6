// SPDX-License-Identifier: Apache-2.0
#include "debug/control/log_commands.h"

#include "debug/control/shared_settings.h"
#include "debug/control/startup.h"
#include "debug/log/log_file.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"

namespace kest {
namespace {

// A number is stored before it is tested: one out of range is stored as the limit and then refused, on
// purpose.
uint32_t CheckNumber(int32_t s32Value, const char *pszText) {
  if (!IsOutOfRange(s32Value)) return ZE_KEST_OK;
  KEST_PRINT_AS(kDispatcher, "format error: %s\n", pszText);
  return ZE_KEST_INVALID_ARGUMENT;
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
  const int32_t s32Bytes = ParseS32(arguments.pszValue);
  SetLogSizeMax(s32Bytes);
  const uint32_t u32Result = CheckNumber(s32Bytes, arguments.pszValue);
  if (u32Result == ZE_KEST_OK) KEST_PRINT_AS(kDispatcher, "LogSizeMax:%d\n", s32Bytes);
  return u32Result;
}

uint32_t SwitchAtrace(const CommandArguments &arguments) {
  Store(bKestAtraceEnable, static_cast<uint8_t>(arguments.u32Constant));
  return ZE_KEST_OK;
}

uint32_t SetMonitorSleep(const CommandArguments &arguments) {
  const int32_t s32Ms = ParseS32(arguments.pszValue);
  SetMonitorSleepTime(s32Ms);
  const uint32_t u32Result = CheckNumber(s32Ms, arguments.pszValue);
  if (u32Result == ZE_KEST_OK) KEST_PRINT_AS(kDispatcher, "sleep time:%d ms\n", s32Ms);
  return u32Result;
}

}  // namespace kest
