// SPDX-License-Identifier: Apache-2.0
#include "debug/log/thread_ids.h"

#include <pthread.h>

#include "ze_kest/utility.h"

#include "utility/core/shared_value.h"

namespace kest {
namespace {

thread_local ThreadIds t_ids = {0, 0};
uint8_t g_bForgetsOnFork = 0;

// In the child of a fork, on the only thread that it has.
void ForgetIds() {
  t_ids = {0, 0};
}

void ForgetOnFork() {
  Store(g_bForgetsOnFork, static_cast<uint8_t>(pthread_atfork(nullptr, nullptr, ForgetIds) == 0));
}

}  // namespace

ThreadIds IdsOfThisThread() {
  if (t_ids.s32Pid != 0) return t_ids;
  static pthread_once_t once = PTHREAD_ONCE_INIT;
  pthread_once(&once, ForgetOnFork);
  const ThreadIds ids = {ze_kest_Utility_GetPid(), ze_kest_Utility_GetTid()};
  // Who would not be told of a fork does not remember.
  if (Load(g_bForgetsOnFork) != 0) t_ids = ids;
  return ids;
}

}  // namespace kest
