// SPDX-License-Identifier: Apache-2.0
#include <ctime>
#include <string_view>

#include "debug/log/log_file.h"
#include "debug/log/log_line.h"
#include "debug/log/prefix_middle.h"
#include "debug/log/thread_id_text.h"
#include "utility/core/report.h"

namespace kest {
namespace {

struct LevelLabel {
  unsigned int u32Level;
  std::string_view colour;
  std::string_view label;  // everything between the time and the message
};

constexpr LevelLabel kLabels[] = {{ZE_KEST_LEVEL_ERR, "\033[1;31m", "]<ZE3><ERR>\033[0m"},
                                  {ZE_KEST_LEVEL_WRN, "\033[1;33m", "]<ZE3><WRN>\033[0m"},
                                  {ZE_KEST_LEVEL_INFO, "\033[1;32m", "]<ZE3><INFO>\033[0m"},
                                  {ZE_KEST_LEVEL_TRACE, "\033[1;36m", "]<ZE3><TRACE>\033[0m"},
                                  {ZE_KEST_LEVEL_ENTER, "\033[1;7;32m", "]<ZE3><ENTER>\033[0m"},
                                  {ZE_KEST_LEVEL_EXIT, "\033[1;7;32m", "]<ZE3><EXIT>\033[0m"},
                                  {ZE_KEST_LEVEL_ERR2, "\033[1;31m", "]<ZE3><ERR>\033[0m"}};
constexpr LevelLabel kUnknownLevel = {0, "", "]<ZE3><>"};

const LevelLabel &LabelOf(unsigned int u32Level) {
  for (const LevelLabel &label : kLabels) {
    if (label.u32Level == u32Level) return label;
  }
  return kUnknownLevel;
}

char Digit(uint32_t u32Number) {
  return static_cast<char>('0' + u32Number % 10);
}

PrefixMiddle g_middle KEST_GUARDED_BY(kDebugLogLock);

// The part between the ids and the label: version, restarts and time.
bool AppendMiddle(LogLine &line) KEST_REQUIRES_LOCK(kDebugLogLock) {
  struct timespec stNow = {};
  clock_gettime(CLOCK_REALTIME, &stNow);
  const auto u32Ms = static_cast<uint32_t>(stNow.tv_nsec / 1000000);
  const char acMs[] = {Digit(u32Ms / 100), Digit(u32Ms / 10), Digit(u32Ms)};
  return line.AppendText(g_middle.TextOf(stNow.tv_sec, LogRestartCount())) &&
         line.AppendText({acMs, sizeof(acMs)});
}

}  // namespace

void _ZE_KEST_Debug_LogPrefix(LogLine &line, unsigned int u32Level) {
  if (u32Level == ZE_KEST_LEVEL_PRINT) return;
  const LevelLabel &label = LabelOf(u32Level);
  const bool bWhole = line.AppendText(label.colour) && line.AppendText(ThreadIdText()) &&
                      AppendMiddle(line) && line.AppendText(label.label);
  if (!bWhole) KEST_ERR("Error! fprintf Fail return\n");
}

}  // namespace kest
