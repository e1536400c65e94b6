// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/result.h"

#include "debug/base/command.h"
#include "debug/thread/signal_test.h"
#include "debug/thread/test_threads.h"
#include "debug/thread/thread_watch.h"
#include "utility/core/missing_text.h"

namespace kest {
namespace {

constexpr const char *kWatchCurrentTids = "_ZE_KEST_Debug_Cmd_WatchCurrentTids";
constexpr const char *kWatchTid = "_ZE_KEST_Debug_Cmd_WatchTid";
constexpr const char *kPthreadSignal = "_ZE_KEST_Debug_Cmd_PthreadSignal";

uint32_t LogEveryThread(const CommandArguments & /*arguments*/) {
  WatchEveryThread();
  return ZE_KEST_OK;
}

uint32_t SilenceRegisteredThreads(const CommandArguments & /*arguments*/) {
  DisableRegisteredThreads();
  PrintDisabledThreads(kWatchCurrentTids);
  return ZE_KEST_OK;
}

// Deliberate: a line without any id also empties the list, although it counts as not taken.
uint32_t WatchThreads(const CommandArguments &arguments) {
  uint32_t u32Result = ZE_KEST_INVALID_ARGUMENT;
  ClearWatchedThreads();
  while (const char *pszTid = arguments.rest.Next(",")) {
    if (IsEmpty(pszTid)) continue;
    WatchThread(ze_kest_Utility_StrToInt(pszTid, static_cast<uint32_t>(ze_kest_Utility_Strlen(pszTid))));
    u32Result = ZE_KEST_OK;
  }
  PrintWatchedThreads(kWatchTid);
  PrintDisabledThreads(kWatchTid);
  return u32Result;
}

uint32_t StartTidTest(const CommandArguments & /*arguments*/) {
  return CreateTidTestThread();
}

uint32_t StartSignalTest(const CommandArguments & /*arguments*/) {
  return CreateSignalTestThread();
}

uint32_t RunSignalTest(const CommandArguments & /*arguments*/) {
  LetSignalTestRun(kPthreadSignal);
  return ZE_KEST_OK;
}

uint32_t PauseSignalTest(const CommandArguments & /*arguments*/) {
  LetSignalTestWait();
  return ZE_KEST_OK;
}

constexpr Command kCurrentTidsCommands[] = {
    {"kest_debug_watch_current_tids", "on", nullptr, "kest_debug_watch_current_tids=on\n", LogEveryThread},
    {"kest_debug_watch_current_tids", "off", nullptr, "kest_debug_watch_current_tids=off\n",
     SilenceRegisteredThreads},
};

constexpr Command kTidCommands[] = {
    {"kest_debug_watch_tid", kNoValue, nullptr, nullptr, WatchThreads},
    // Deliberate: it confirms under the other keyword.
    {"kest_debug_watch", "create_test", nullptr, "kest_debug_watch_tid=create_test\n", StartTidTest},
};

constexpr Command kSignalCommands[] = {
    // Deliberate: the reply includes the shell's "echo".
    {"kest_pthread_signal", "create_test", nullptr, "echo kest_pthread_signal=create_test\n",
     StartSignalTest},
    {"kest_pthread_signal_test", "run", nullptr, "kest_pthread_signal_test=run\n", RunSignalTest},
    {"kest_pthread_signal_test", "wait", nullptr, "kest_pthread_signal_test=wait\n", PauseSignalTest},
};

uint32_t RunThreadCommand(const char *pszFunction, const CommandTable &commands, const char *pszLine) {
  CommandLine line(pszLine);
  const char *pszKeyword = line.Next(" =");
  return RunFirst(commands, pszFunction, pszKeyword, line);
}

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_WatchCurrentTids(const char *pszLine) {
  return RunThreadCommand(kWatchCurrentTids, CommandTable(kCurrentTidsCommands), pszLine);
}

uint32_t _ZE_KEST_Debug_Cmd_WatchTid(const char *pszLine) {
  return RunThreadCommand(kWatchTid, CommandTable(kTidCommands), pszLine);
}

uint32_t _ZE_KEST_Debug_Cmd_PthreadSignal(const char *pszLine) {
  return RunThreadCommand(kPthreadSignal, CommandTable(kSignalCommands), pszLine);
}

}  // namespace kest
