// SPDX-License-Identifier: Apache-2.0
#include "debug/base/fork_guard.h"

namespace kest {
namespace {

ForkedMutex *g_pstFirst = nullptr;
size_t g_sztCount = 0;
uint32_t g_u32Generation = 0;

// Nothing is reported in these three: the log needs the mutexes.
void TakeAll() {
  for (size_t i = 0; i < g_sztCount; ++i) {
    ForkedMutex &mutex = g_pstFirst[i];
    if (mutex.pOwner->IsMine()) continue;
    pthread_mutex_lock(mutex.pstMutex);
    mutex.pOwner->Take();
    mutex.bTaken = true;
  }
}

void ReleaseAll() {
  for (size_t i = g_sztCount; i > 0; --i) {
    ForkedMutex &mutex = g_pstFirst[i - 1];
    if (!mutex.pOwner->IsMine() || !mutex.bTaken) continue;
    mutex.bTaken = false;
    mutex.pOwner->Drop();
    pthread_mutex_unlock(mutex.pstMutex);
  }
}

void ReleaseInChild() {
  Store(g_u32Generation, g_u32Generation + 1);
  ReleaseAll();
}

}  // namespace

void GuardForks(ForkedMutex *pstFirst, size_t sztCount) {
  g_pstFirst = pstFirst;
  g_sztCount = sztCount;
  if (pthread_atfork(TakeAll, ReleaseAll, ReleaseInChild) == 0) Store(g_u32Generation, uint32_t{1});
}

uint32_t ForkGeneration() {
  return Load(g_u32Generation);
}

}  // namespace kest
