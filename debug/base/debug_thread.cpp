// SPDX-License-Identifier: Apache-2.0
#include "debug/base/debug_thread.h"

namespace kest {

uint32_t CreateDebugThread(DebugThread &thread) {
  constexpr const char *kFunction = "_ZE_KEST_Debug_CreateThread";
  if (IsRunning(thread)) return ZE_KEST_OK;
  DestroyDebugThread(thread);
  Store(thread.bRunning, uint8_t{1});
  thread.pfnSetAttributes();
  if (pthread_create(&thread.stThread, thread.pstAttributes, thread.pfnBody, nullptr) != 0) {
    Store(thread.bRunning, uint8_t{0});
    thread.pfnDestroyAttributes();
    KEST_ERR_AS(kFunction, "Err! pthread_create failed!\n");
    return ZE_KEST_FAILED;
  }
  thread.bToJoin = true;
  KEST_THREAD_CALL_AS(kFunction, pthread_setname_np(thread.stThread, thread.pszName));
  return ZE_KEST_OK;
}

void DestroyDebugThread(DebugThread &thread) {
  if (!thread.bToJoin) return;
  thread.bToJoin = false;
  Store(thread.bRunning, uint8_t{0});
  thread.pfnDestroyAttributes();
  KEST_THREAD_CALL_AS("_ZE_KEST_Debug_DestroyThread", pthread_join(thread.stThread, nullptr));
}

}  // namespace kest
