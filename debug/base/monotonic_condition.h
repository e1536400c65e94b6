// SPDX-License-Identifier: Apache-2.0
// Conditions whose deadlines come from ze_kest_Utility_MicrosecondToTimespec.
#pragma once

#include <pthread.h>

#include "utility/core/report.h"

namespace kest {

// By default a condition measures its deadlines by the wall clock. A deadline of the monotonic clock would
// then lie in the past, and the condition would never wait.
inline void InitialiseMonotonicCondition(const char *pszCaller, pthread_cond_t *pstCondition) {
  pthread_condattr_t stAttributes;
  KEST_THREAD_CALL_AS(pszCaller, pthread_condattr_init(&stAttributes));
  KEST_THREAD_CALL_AS(pszCaller, pthread_condattr_setclock(&stAttributes, CLOCK_MONOTONIC));
  KEST_THREAD_CALL_AS(pszCaller, pthread_cond_init(pstCondition, &stAttributes));
  KEST_THREAD_CALL_AS(pszCaller, pthread_condattr_destroy(&stAttributes));
}

}  // namespace kest
