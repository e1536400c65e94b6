// SPDX-License-Identifier: Apache-2.0
#include "debug/log/thread_id_text.h"

#include <algorithm>
#include <cstdio>

#include <pthread.h>

#include "ze_kest/utility.h"

#include "utility/core/shared_value.h"

namespace kest {
namespace {

struct IdText {
  char sz[sizeof("-2147483648 -2147483648")];
  uint8_t u8Length;
};

thread_local IdText t_ids = {};
uint8_t g_bForgetsOnFork = 0;

// Runs in the child of a fork, on its only thread.
void ForgetIds() {
  t_ids.u8Length = 0;
}

void ForgetOnFork() {
  Store(g_bForgetsOnFork, static_cast<uint8_t>(pthread_atfork(nullptr, nullptr, ForgetIds) == 0));
}

// Out of line because it runs once per thread. Without the fork handler it runs in every call, since cached
// ids might be those of a parent process.
__attribute__((noinline)) void AskForIds() {
  static pthread_once_t once = PTHREAD_ONCE_INIT;
  pthread_once(&once, ForgetOnFork);
  const int s32Length =
      snprintf(t_ids.sz, sizeof(t_ids.sz), "%d %d", ze_kest_Utility_GetPid(), ze_kest_Utility_GetTid());
  t_ids.u8Length = static_cast<uint8_t>(std::max(s32Length, 0));
}

}  // namespace

std::string_view ThreadIdText() {
  if (t_ids.u8Length == 0 || Load(g_bForgetsOnFork) == 0) AskForIds();
  return {t_ids.sz, t_ids.u8Length};
}

}  // namespace kest
