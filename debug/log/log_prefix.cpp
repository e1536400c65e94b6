// SPDX-License-Identifier: Apache-2.0
#include <ctime>

#include "ze_kest/utility.h"

#include "debug/control/version.h"
#include "debug/log/log_file.h"
#include "debug/log/log_line.h"
#include "utility/core/report.h"

namespace kest {
namespace {

struct LevelLabel {
  unsigned int u32Level;
  const char *pszColour;
  const char *pszLabel;
};

constexpr LevelLabel kLabels[] = {
    {ZE_KEST_LEVEL_ERR, "\033[1;31m", "ERR"},       {ZE_KEST_LEVEL_WRN, "\033[1;33m", "WRN"},
    {ZE_KEST_LEVEL_INFO, "\033[1;32m", "INFO"},     {ZE_KEST_LEVEL_TRACE, "\033[1;36m", "TRACE"},
    {ZE_KEST_LEVEL_ENTER, "\033[1;7;32m", "ENTER"}, {ZE_KEST_LEVEL_EXIT, "\033[1;7;32m", "EXIT"},
    {ZE_KEST_LEVEL_ERR2, "\033[1;31m", "ERR"}};
constexpr LevelLabel kUnknownLevel = {0, "", ""};
constexpr const char *kColourEnd = "\033[0m";

const LevelLabel &LabelOf(unsigned int u32Level) {
  for (const LevelLabel &label : kLabels) {
    if (label.u32Level == u32Level) return label;
  }
  return kUnknownLevel;
}

using TimeText = char[256];

// Month-day hour:minute:second.millisecond of the wall clock.
void FormatNow(TimeText &szTime) {
  struct timespec stNow = {};
  clock_gettime(CLOCK_REALTIME, &stNow);
  struct tm stLocal = {};
  localtime_r(&stNow.tv_sec, &stLocal);
  const int s32Length =
      snprintf(szTime, sizeof(szTime), "%.2d-%.2d %.2d:%.2d:%.2d.%.3ld", stLocal.tm_mon + 1, stLocal.tm_mday,
               stLocal.tm_hour, stLocal.tm_min, stLocal.tm_sec, stNow.tv_nsec / 1000000);
  if (s32Length < 0) KEST_ERR_AS("_ZE_KEST_Debug_LogPrefix", "Error! Fail to snprintf()!\n");
}

}  // namespace

void _ZE_KEST_Debug_LogPrefix(LogLine &line, unsigned int u32Level) {
  if (u32Level == ZE_KEST_LEVEL_PRINT) return;
  const LevelLabel &label = LabelOf(u32Level);
  const char *pszColourEnd = *label.pszColour == '\0' ? "" : kColourEnd;
  TimeText szTime = {};
  FormatNow(szTime);
  const bool bWhole = line.Append("%s%d %d [%s,%d][%s]<ZE3><%s>%s", label.pszColour, ze_kest_Utility_GetPid(),
                                  ze_kest_Utility_GetTid(), kVersion, LogRestartCount(), szTime,
                                  label.pszLabel, pszColourEnd);
  if (!bWhole) KEST_ERR("Error! fprintf Fail return\n");
}

}  // namespace kest
