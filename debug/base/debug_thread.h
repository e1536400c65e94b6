// SPDX-License-Identifier: Apache-2.0
// Creation and end of the debug layer's threads.
//
// Callers serialise the two functions: they must not run at the same time for the same thread.
#pragma once

#include <pthread.h>
#include <sched.h>

#include "utility/core/report.h"

namespace kest {

struct DebugThread {
  const char *pszName;  // at most 15 characters
  void *(*pfnBody)(void *);
  const pthread_attr_t *pstAttributes;
  void (*pfnSetAttributes)();
  void (*pfnDestroyAttributes)();
  pthread_t stThread = {};
  uint8_t bRunning = 0;  // set at creation; the body ends once it sees it cleared
  bool bToJoin = false;  // the thread was created and has not been joined yet
};

inline bool IsRunning(const DebugThread &thread) {
  return Load(thread.bRunning) != 0;
}

// Leaves a running thread alone. One that has ended by itself, with its flag cleared, is joined first.
// ZE_KEST_FAILED when the thread cannot be created.
uint32_t CreateDebugThread(DebugThread &thread);

// Clears the running flag and joins the thread, which may have ended by itself. Returns at once when it was
// never created.
void DestroyDebugThread(DebugThread &thread);

}  // namespace kest

// Defines a thread's attributes and the two functions that set and destroy them. A macro because the reports
// quote the calls with the names of the thread's own objects. They also quote the stack size, hence its odd
// form.
#define KEST_DEFINE_THREAD_ATTRIBUTES(set, destroy, attributes, sched, policy)                         \
  pthread_attr_t attributes;                                                                           \
  struct sched_param sched;                                                                            \
  void set() {                                                                                         \
    constexpr const char *kFunction = "_ZE_KEST_Debug_CreateThread";                                   \
    KEST_THREAD_CALL_AS(kFunction, pthread_attr_init(&attributes));                                    \
    /* NOLINTNEXTLINE(bugprone-implicit-widening-of-multiplication-result) */                          \
    KEST_THREAD_CALL_AS(kFunction, pthread_attr_setstacksize(&attributes, (2 * 4096) * 8));            \
    KEST_THREAD_CALL_AS(kFunction, pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_JOINABLE)); \
    KEST_THREAD_CALL_AS(kFunction, pthread_attr_setinheritsched(&attributes, PTHREAD_EXPLICIT_SCHED)); \
    KEST_THREAD_CALL_AS(kFunction, pthread_attr_setschedpolicy(&attributes, SCHED_##policy));          \
    KEST_THREAD_CALL_AS(kFunction, pthread_attr_getschedparam(&attributes, &sched));                   \
    /* SCHED_OTHER has no priorities and refuses this; the thread then runs with the default. */       \
    sched.sched_priority = 40;                                                                         \
    KEST_THREAD_CALL_AS(kFunction, pthread_attr_setschedparam(&attributes, &sched));                   \
  }                                                                                                    \
  void destroy() {                                                                                     \
    KEST_THREAD_CALL_AS("_ZE_KEST_Debug_DestroyThread", pthread_attr_destroy(&attributes));            \
  }
