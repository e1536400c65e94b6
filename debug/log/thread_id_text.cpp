// SPDX-License-Identifier: Apache-2.0
#include "debug/log/thread_id_text.h"

#include <algorithm>
#include <cstdio>

#include "ze_kest/utility.h"

#include "debug/base/fork_guard.h"

namespace kest {
namespace {

struct IdText {
  char sz[sizeof("-2147483648 -2147483648")];
  uint8_t u8Length;
  uint32_t u32Generation;  // of the process that asked for them
};

thread_local IdText t_ids = {};

// Out of line because it runs once per thread.
__attribute__((noinline)) void AskForIds(uint32_t u32Generation) {
  const int s32Length =
      snprintf(t_ids.sz, sizeof(t_ids.sz), "%d %d", ze_kest_Utility_GetPid(), ze_kest_Utility_GetTid());
  t_ids.u8Length = static_cast<uint8_t>(std::max(s32Length, 0));
  t_ids.u32Generation = u32Generation;
}

}  // namespace

std::string_view ThreadIdText() {
  const uint32_t u32Generation = ForkGeneration();
  if (u32Generation == 0 || t_ids.u32Generation != u32Generation) AskForIds(u32Generation);
  return {t_ids.sz, t_ids.u8Length};
}

}  // namespace kest
