// SPDX-License-Identifier: Apache-2.0
#include <ctime>
#include <string_view>

#include "debug/control/version.h"
#include "debug/log/log_file.h"
#include "debug/log/log_line.h"
#include "debug/log/thread_ids.h"
#include "debug/log/wall_time.h"
#include "utility/core/report.h"

namespace kest {
namespace {

struct LevelLabel {
  unsigned int u32Level;
  std::string_view colour;
  std::string_view label;
};

constexpr LevelLabel kLabels[] = {
    {ZE_KEST_LEVEL_ERR, "\033[1;31m", "ERR"},       {ZE_KEST_LEVEL_WRN, "\033[1;33m", "WRN"},
    {ZE_KEST_LEVEL_INFO, "\033[1;32m", "INFO"},     {ZE_KEST_LEVEL_TRACE, "\033[1;36m", "TRACE"},
    {ZE_KEST_LEVEL_ENTER, "\033[1;7;32m", "ENTER"}, {ZE_KEST_LEVEL_EXIT, "\033[1;7;32m", "EXIT"},
    {ZE_KEST_LEVEL_ERR2, "\033[1;31m", "ERR"}};
constexpr LevelLabel kUnknownLevel = {0, "", ""};
constexpr std::string_view kColourEnd = "\033[0m";

const LevelLabel &LabelOf(unsigned int u32Level) {
  for (const LevelLabel &label : kLabels) {
    if (label.u32Level == u32Level) return label;
  }
  return kUnknownLevel;
}

char Digit(uint32_t u32Number) {
  return static_cast<char>('0' + u32Number % 10);
}

WallTime g_wallTime;  // under the log mutex

// Month-day hour:minute:second.millisecond of the wall clock.
bool AppendNow(LogLine &line) {
  struct timespec stNow = {};
  clock_gettime(CLOCK_REALTIME, &stNow);
  const auto u32Ms = static_cast<uint32_t>(stNow.tv_nsec / 1000000);
  const char acMs[] = {'.', Digit(u32Ms / 100), Digit(u32Ms / 10), Digit(u32Ms)};
  return line.AppendText(g_wallTime.TextOf(stNow.tv_sec)) && line.AppendText({acMs, sizeof(acMs)});
}

}  // namespace

void _ZE_KEST_Debug_LogPrefix(LogLine &line, unsigned int u32Level) {
  if (u32Level == ZE_KEST_LEVEL_PRINT) return;
  const LevelLabel &label = LabelOf(u32Level);
  const ThreadIds ids = IdsOfThisThread();
  const bool bWhole = line.AppendText(label.colour) && line.AppendNumber(ids.s32Pid) &&
                      line.AppendText(" ") && line.AppendNumber(ids.s32Tid) && line.AppendText(" [") &&
                      line.AppendText(kVersion) && line.AppendText(",") &&
                      line.AppendNumber(LogRestartCount()) && line.AppendText("][") && AppendNow(line) &&
                      line.AppendText("]<ZE3><") && line.AppendText(label.label) && line.AppendText(">") &&
                      line.AppendText(label.colour.empty() ? "" : kColourEnd);
  if (!bWhole) KEST_ERR("Error! fprintf Fail return\n");
}

}  // namespace kest
