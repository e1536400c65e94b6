// SPDX-License-Identifier: Apache-2.0
#include "debug/thread/thread_commands.h"

#include "debug/base/command_line.h"
#include "debug/control/create_thread.h"
#include "debug/thread/signal_test.h"
#include "debug/thread/thread_watch.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kKeywordEnd = " =";

bool Is(const char *psz, const char *pszExpected) {
  return ze_kest_Utility_Strcmp(psz, pszExpected) == 0;
}

// Deliberate: a line without any id also empties the list, although it counts as not taken.
uint32_t WatchThreads(CommandLine &line) {
  uint32_t u32Result = ZE_KEST_INVALID_ARGUMENT;
  ClearWatchedThreads();
  while (const char *pszTid = line.Next(",")) {
    if (IsEmpty(pszTid)) continue;
    WatchThread(ze_kest_Utility_StrToInt(pszTid, static_cast<uint32_t>(ze_kest_Utility_Strlen(pszTid))));
    u32Result = ZE_KEST_OK;
  }
  return u32Result;
}

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_WatchCurrentTids(const char *pszLine) {
  CommandLine line(pszLine);
  if (!Is(line.Next(kKeywordEnd), "kest_debug_watch_current_tids")) return ZE_KEST_INVALID_ARGUMENT;
  if (Is(line.Rest(), "on")) {
    KEST_PRINT("kest_debug_watch_current_tids=on\n");
    WatchEveryThread();
    return ZE_KEST_OK;
  }
  if (Is(line.Rest(), "off")) {
    KEST_PRINT("kest_debug_watch_current_tids=off\n");
    DisableRegisteredThreads();
    PrintDisabledThreads(__func__);
    return ZE_KEST_OK;
  }
  return ZE_KEST_INVALID_ARGUMENT;
}

uint32_t _ZE_KEST_Debug_Cmd_WatchTid(const char *pszLine) {
  CommandLine line(pszLine);
  const char *pszKeyword = line.Next(kKeywordEnd);
  if (Is(pszKeyword, "kest_debug_watch_tid")) {
    const uint32_t u32Result = WatchThreads(line);
    PrintWatchedThreads(__func__);
    PrintDisabledThreads(__func__);
    return u32Result;
  }
  if (Is(pszKeyword, "kest_debug_watch") && Is(line.Rest(), "create_test")) {
    // Deliberate: it confirms under the other keyword.
    KEST_PRINT("kest_debug_watch_tid=create_test\n");
    return _ZE_KEST_Debug_CreateThread(kTidTestThread);
  }
  return ZE_KEST_INVALID_ARGUMENT;
}

uint32_t _ZE_KEST_Debug_Cmd_PthreadSignal(const char *pszLine) {
  CommandLine line(pszLine);
  const char *pszKeyword = line.Next(kKeywordEnd);
  if (Is(pszKeyword, "kest_pthread_signal") && Is(line.Rest(), "create_test")) {
    // Deliberate: the reply includes the shell's "echo".
    KEST_PRINT("echo kest_pthread_signal=create_test\n");
    return _ZE_KEST_Debug_CreateThread(kSignalTestThread);
  }
  if (!Is(pszKeyword, "kest_pthread_signal_test")) return ZE_KEST_INVALID_ARGUMENT;
  if (Is(line.Rest(), "run")) {
    KEST_PRINT("kest_pthread_signal_test=run\n");
    LetSignalTestRun(__func__);
    return ZE_KEST_OK;
  }
  if (Is(line.Rest(), "wait")) {
    KEST_PRINT("kest_pthread_signal_test=wait\n");
    LetSignalTestWait();
    return ZE_KEST_OK;
  }
  return ZE_KEST_INVALID_ARGUMENT;
}

}  // namespace kest
