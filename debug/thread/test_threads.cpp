// SPDX-License-Identifier: Apache-2.0
#include "debug/thread/test_threads.h"

#include "debug/base/debug_mutex.h"
#include "debug/thread/signal_test.h"
#include "debug/thread/tid_test.h"

namespace kest {
namespace {

// Commands may come from any thread, even during a shut-down. Nothing may be reported under the mutex while
// the layer is down: the report may start the base initialisation, which takes this mutex.
bool g_bLayerIsUp KEST_GUARDED_BY(g_testThreadsMutex) = false;

uint32_t Create(DebugThread &thread) {
  {
    const HoldingOwned holding(g_testThreadsMutex);
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
  const HoldingOwned holding(g_testThreadsMutex);
  ResetTidTest();
  ResetSignalTest();
  g_bLayerIsUp = true;
}

void EndTestThreads() {
  const HoldingOwned holding(g_testThreadsMutex);
  g_bLayerIsUp = false;
  StopTidTest();
  StopSignalTest();
  DestroyDebugThread(_stKestDebugTidTest);
  DestroyDebugThread(_stKestDebugPthreadSignalTest);
}

}  // namespace kest
