// SPDX-License-Identifier: Apache-2.0
#include "debug/thread/test_threads.h"

#include "debug/thread/signal_test.h"
#include "debug/thread/tid_test.h"

namespace kest {
namespace {

pthread_mutex_t g_mutex = PTHREAD_MUTEX_INITIALIZER;
bool g_bLayerIsUp = false;

// Commands may come from any thread, even during a shut-down. Nothing may be reported under the mutex while
// the layer is down: the report may start the base initialisation, which takes this mutex.
class HoldingTestThreads {
 public:
  HoldingTestThreads() { pthread_mutex_lock(&g_mutex); }
  ~HoldingTestThreads() { pthread_mutex_unlock(&g_mutex); }
  HoldingTestThreads(const HoldingTestThreads &) = delete;
  HoldingTestThreads &operator=(const HoldingTestThreads &) = delete;
};

uint32_t Create(DebugThread &thread) {
  {
    const HoldingTestThreads holding;
    if (g_bLayerIsUp) return CreateDebugThread(thread);
  }
  KEST_ERR_AS("_ZE_KEST_Debug_CreateThread", "Err! Not initialized yet!\n");
  return ZE_KEST_NOT_INITIALISED;
}

}  // namespace

uint32_t CreateTidTestThread() {
  return Create(_stKestDebugTidTest);
}

uint32_t CreateSignalTestThread() {
  return Create(_stKestDebugPthreadSignalTest);
}

void ResetTestThreads() {
  const HoldingTestThreads holding;
  ResetTidTest();
  ResetSignalTest();
  g_bLayerIsUp = true;
}

void EndTestThreads() {
  const HoldingTestThreads holding;
  g_bLayerIsUp = false;
  StopTidTest();
  StopSignalTest();
  DestroyDebugThread(_stKestDebugTidTest);
  DestroyDebugThread(_stKestDebugPthreadSignalTest);
}

}  // namespace kest
