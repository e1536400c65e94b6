// SPDX-License-Identifier: Apache-2.0
// Forks beside other threads: the child, which has the forking thread alone, finds no mutex locked for ever.
#pragma once

#include <cstddef>
#include <cstdint>

#include <pthread.h>

#include "debug/base/lock_owner.h"

namespace kest {

struct ForkedMutex {
  pthread_mutex_t *pstMutex;
  LockOwner *pOwner;
  bool bTaken = false;  // by the fork in progress; changed with the mutex held
};

// From now on a fork waits until it holds these mutexes, in this order, and releases them on both sides.
// Those that the forking thread holds already stay as they are. Called once per process.
void GuardForks(ForkedMutex *pstFirst, size_t sztCount);

// Another one in the child of a fork, for what is true of one process only. 0: forks are not guarded, so that
// nothing of the kind may be kept.
uint32_t ForkGeneration();

}  // namespace kest
