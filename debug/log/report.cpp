// SPDX-License-Identifier: Apache-2.0
// The two halves of a report. They share one formatted text.
#include "utility/core/report.h"

#include <cstdarg>

#include <android/log.h>

#include "debug/log/log_line.h"

namespace kest {
namespace {

constexpr const char *kTag = "<KEST>";

struct Kind {
  uint32_t u32Level;
  android_LogPriority ePriority;
  const char *pszLabel;
};

constexpr Kind kPrint = {ZE_KEST_LEVEL_PRINT, ANDROID_LOG_INFO, "<PRINT>"};
constexpr Kind kKinds[] = {{ZE_KEST_LEVEL_ERR, ANDROID_LOG_ERROR, "<ERR>"},
                           {ZE_KEST_LEVEL_WRN, ANDROID_LOG_WARN, "<WRN>"},
                           {ZE_KEST_LEVEL_INFO, ANDROID_LOG_INFO, "<INFO>"}};

const Kind &KindOf(uint32_t u32Level) {
  for (const Kind &kind : kKinds) {
    if (kind.u32Level == u32Level) return kind;
  }
  return kPrint;
}

}  // namespace

void Report(uint32_t u32Level, const char *pszFunction, int s32Line, const char *pszFormat, ...) {
  LogLine text;
  va_list arguments;
  va_start(arguments, pszFormat);
  const bool bWhole = text.AppendList(pszFormat, arguments);
  va_end(arguments);

  const Kind &kind = KindOf(u32Level);
  __android_log_print(kind.ePriority, kTag, "%s%s[%-4d]: %s", kind.pszLabel, pszFunction, s32Line,
                      text.c_str());
  if (u32Level == ZE_KEST_LEVEL_PRINT) {
    ze_kest_Debug_Log(u32Level, "%s", text.c_str());
  } else {
    ze_kest_Debug_Log(u32Level, "%s[%-4d]: %s", pszFunction, s32Line, text.c_str());
  }
  if (!bWhole) KEST_ERR_AS("ze_kest_Debug_Log", "Error! Fail to vfprintf()!\n");
}

void ReportRefusal(const char *pszFunction, int s32Line, const char *pszText) {
  if (LevelIsOn(ZE_KEST_LEVEL_ERR)) Report(ZE_KEST_LEVEL_ERR, pszFunction, s32Line, "%s", pszText);
}

void ReportThreadCall(const char *pszFunction, int s32Line, const char *pszCall, int s32Result) {
  if (!LevelIsOn(ZE_KEST_LEVEL_WRN)) return;
  Report(ZE_KEST_LEVEL_WRN, pszFunction, s32Line, "%s error:%d,%s \n", pszCall, s32Result,
         ErrorText(s32Result).c_str());
}

}  // namespace kest
