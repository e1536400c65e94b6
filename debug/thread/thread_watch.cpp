// SPDX-License-Identifier: Apache-2.0
#include "debug/thread/thread_watch.h"

#include "debug/base/debug_mutex.h"
#include "debug/registry/registry.h"
#include "debug/thread/tid_list.h"
#include "utility/core/report.h"

namespace kest {
namespace {

TidList g_watched;
TidList g_disabled;
uint8_t g_u8Disabling = 0;  // 1: the disable list decides; 0: the watch list

bool IsDisabling() {
  return Load(g_u8Disabling) == 1;
}

void ClearBoth(uint8_t u8Disabling) {
  g_watched.Clear();
  g_disabled.Clear();
  Store(g_u8Disabling, u8Disabling);
}

void PrintEntries(const char *pszFunction, const TidList &list) {
  for (uint32_t i = 0; i < TidList::kMax; ++i) {
    const int32_t s32Tid = list.At(i);
    if (s32Tid != 0) KEST_PRINT_AS(pszFunction, "id:%d, tid:%d\n", static_cast<int>(i), s32Tid);
  }
}

}  // namespace

bool IsThisThreadLogged() {
  const bool bDisabling = IsDisabling();
  const TidList &list = bDisabling ? g_disabled : g_watched;
  return list.IsEmpty() || list.Holds(CurrentThreadId()) != bDisabling;
}

void WatchEveryThread() {
  ClearBoth(0);
}

void DisableRegisteredThreads() {
  ClearBoth(1);
  const HoldingDebug holding;
  int32_t s32Previous = 0;
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    const auto s32Tid = static_cast<int32_t>(info.u32Tid);
    // Filters of the same thread mostly stand side by side. An id that comes back later is appended again.
    if (s32Tid != s32Previous) g_disabled.Append(s32Tid);
    s32Previous = s32Tid;
  }
}

void ClearWatchedThreads() {
  g_watched.Clear();
}

void WatchThread(int32_t s32Tid) {
  if (g_watched.Append(s32Tid) && IsDisabling()) g_disabled.Remove(s32Tid);
}

void PrintWatchedThreads(const char *pszFunction) {
  KEST_PRINT_AS(pszFunction, "watch tid list:\n");
  PrintEntries(pszFunction, g_watched);
}

void PrintDisabledThreads(const char *pszFunction) {
  KEST_PRINT_AS(pszFunction, "disable tids list:\n");
  PrintEntries(pszFunction, g_disabled);
}

}  // namespace kest
