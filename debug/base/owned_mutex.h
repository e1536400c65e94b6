// SPDX-License-Identifier: Apache-2.0
// A mutex that knows its owner. Nothing is reported about it.
#pragma once

#include <pthread.h>

#include "debug/base/lock_owner.h"
#include "debug/base/thread_safety.h"

namespace kest {

struct KEST_CAPABILITY OwnedMutex {
  pthread_mutex_t stMutex = PTHREAD_MUTEX_INITIALIZER;
  LockOwner owner;
};

class KEST_SCOPED_CAPABILITY HoldingOwned {
 public:
  explicit HoldingOwned(OwnedMutex &mutex) KEST_ACQUIRES_LOCK(mutex) : mutex_(mutex) {
    pthread_mutex_lock(&mutex_.stMutex);
    mutex_.owner.Take();
  }
  ~HoldingOwned() KEST_RELEASES_LOCK() {
    mutex_.owner.Drop();
    pthread_mutex_unlock(&mutex_.stMutex);
  }
  HoldingOwned(const HoldingOwned &) = delete;
  HoldingOwned &operator=(const HoldingOwned &) = delete;

 private:
  OwnedMutex &mutex_;
};

}  // namespace kest
