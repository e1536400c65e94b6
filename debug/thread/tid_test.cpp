// SPDX-License-Identifier: Apache-2.0
#include "debug/thread/tid_test.h"

#include <algorithm>

#include "debug/base/monotonic_condition.h"
#include "utility/core/owned_memory.h"
#include "utility/core/text_field.h"

namespace kest {

int32_t s32KestDebugTidTestDelayMs = 0;

namespace {

constexpr int32_t kDelayMs = 5000;

pthread_mutex_t g_mutex = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t g_stopped;
pthread_once_t g_once = PTHREAD_ONCE_INIT;

void InitialiseOnce() {
  InitialiseMonotonicCondition("_ZE_KEST_Debug_TidTestInit", &g_stopped);
}

Owned<ZE_KEST_Filter_s> _ZE_KEST_Debug_CreateFilter() {
  void *pv = nullptr;
  ze_kest_Utility_MemoryAlloc(&pv, sizeof(ZE_KEST_Filter_s));
  Owned<ZE_KEST_Filter_s> filter(static_cast<ZE_KEST_Filter_s *>(pv));
  KEST_REQUIRE_OR(filter != nullptr, nullptr, "Err! MALLOC failed\n");
  *filter = {};
  static_cast<void>(CopyText(filter->szName, "TidTest"));  // fails only for NULL
  return filter;
}

// Waits until the next line is due or the test is stopped.
void Wait() {
  struct timespec outtime;
  const int32_t s32DelayMs = std::max(0, Load(s32KestDebugTidTestDelayMs));
  ze_kest_Utility_MicrosecondToTimespec(&outtime, static_cast<uint64_t>(s32DelayMs) * 1000);
  pthread_mutex_lock(&g_mutex);
  while (IsRunning(_stKestDebugTidTest) && pthread_cond_timedwait(&g_stopped, &g_mutex, &outtime) == 0) {
  }
  pthread_mutex_unlock(&g_mutex);
}

void LogAtIntervals(const ZE_KEST_Filter_s &filter) {
  while (IsRunning(_stKestDebugTidTest)) {
    KEST_PRINT_AS("_ZE_KEST_Debug_TidTestMonitor", "[%s] tid:%d\n", filter.szName, ze_kest_Utility_GetTid());
    Wait();
  }
}

void *_ZE_KEST_Debug_TidTestMonitor(void * /*pvUnused*/) {
  const Owned<ZE_KEST_Filter_s> filter = _ZE_KEST_Debug_CreateFilter();
  if (filter != nullptr) {
    LogAtIntervals(*filter);
  } else {
    KEST_ERR("Err! CreateFilter failed!\n");
    Store(_stKestDebugTidTest.bRunning, uint8_t{0});
  }
  return nullptr;
}

KEST_DEFINE_THREAD_ATTRIBUTES(SetAttributes, DestroyAttributes, _stKestDebugTidTestMonitorThreadAttr,
                              _stKestDebugTidTestMonitorSched, RR)

}  // namespace

DebugThread _stKestDebugTidTest = {"KestTidTest", _ZE_KEST_Debug_TidTestMonitor,
                                   &_stKestDebugTidTestMonitorThreadAttr, SetAttributes, DestroyAttributes};

void ResetTidTest() {
  pthread_once(&g_once, InitialiseOnce);
  Store(s32KestDebugTidTestDelayMs, kDelayMs);
  Store(_stKestDebugTidTest.bRunning, uint8_t{0});
}

void StopTidTest() {
  pthread_mutex_lock(&g_mutex);
  Store(_stKestDebugTidTest.bRunning, uint8_t{0});
  pthread_cond_signal(&g_stopped);
  pthread_mutex_unlock(&g_mutex);
}

}  // namespace kest
