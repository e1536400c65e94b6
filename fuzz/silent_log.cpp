// SPDX-License-Identifier: Apache-2.0
#include "fuzz/silent_log.h"

#include <android/log.h>

#include "ze_kest/debug.h"

// A refused allocation is an answer to be handled, not a finding.
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1:quarantine_size_mb=16";
}

namespace kest::fuzz {

void SilenceLog() {
  __android_log_set_logger([](const __android_logger_data *, const char *) {});
  // The first log line of a process takes the level from the shared settings, so it comes before the store.
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%s", "");
  __atomic_store_n(&u32KestDebugLevel, uint32_t{ZE_KEST_LEVEL_ENTER}, __ATOMIC_RELAXED);
}

}  // namespace kest::fuzz
