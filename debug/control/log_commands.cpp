// SPDX-License-Identifier: Apache-2.0
#include "debug/control/log_commands.h"

#include "debug/control/shared_settings.h"
#include "debug/control/startup.h"
#include "debug/log/log_file.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"

namespace kest {
namespace {

// Sets a number before it is tested: one out of range is stored as the limit and then refused, on purpose.
uint32_t SetNumber(const char *pszValue, void (*pfnSet)(int32_t), int32_t *ps32Value) {
  *ps32Value = ParseS32(pszValue);
  pfnSet(*ps32Value);
  if (!IsOutOfRange(*ps32Value)) return ZE_KEST_OK;
  KEST_PRINT("format error: %s\n", pszValue);
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
  KEST_INFO("Test:<INFO>\n");
  KEST_WRN("Test:<WRN>\n");
  KEST_ERR("Test:<ERR>\n");
  return ZE_KEST_OK;
}

uint32_t SetLogSize(const CommandArguments &arguments) {
  int32_t s32Bytes = 0;
  const uint32_t u32Result = SetNumber(arguments.pszValue, SetLogSizeMax, &s32Bytes);
  if (u32Result == ZE_KEST_OK) KEST_PRINT("LogSizeMax:%d\n", s32Bytes);
  return u32Result;
}

uint32_t SwitchAtrace(const CommandArguments &arguments) {
  Store(bKestAtraceEnable, static_cast<uint8_t>(arguments.u32Constant));
  return ZE_KEST_OK;
}

uint32_t SetMonitorSleep(const CommandArguments &arguments) {
  int32_t s32Ms = 0;
  const uint32_t u32Result = SetNumber(arguments.pszValue, SetMonitorSleepTime, &s32Ms);
  if (u32Result == ZE_KEST_OK) KEST_PRINT("sleep time:%d ms\n", s32Ms);
  return u32Result;
}

}  // namespace kest
