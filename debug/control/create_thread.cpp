// SPDX-License-Identifier: Apache-2.0
#include "debug/control/create_thread.h"

#include "ze_kest/result.h"

#include "debug/control/command_thread.h"
#include "debug/thread/test_threads.h"

namespace kest {

uint32_t _ZE_KEST_Debug_CreateThread(unsigned int u32Index) {
  switch (u32Index) {
    case kCommandThread:
      return CreateCommandThread();
    case kTidTestThread:
      return CreateTidTestThread();
    case kSignalTestThread:
      return CreateSignalTestThread();
    default:
      return ZE_KEST_OK;
  }
}

}  // namespace kest
