// SPDX-License-Identifier: Apache-2.0
// A mutex that knows its owner. Nothing is reported about it.
#pragma once

#include <pthread.h>

#include "debug/base/lock_owner.h"

namespace kest {

struct OwnedMutex {
  pthread_mutex_t stMutex = PTHREAD_MUTEX_INITIALIZER;
  LockOwner owner;
};

class HoldingOwned {
 public:
  explicit HoldingOwned(OwnedMutex &mutex) : mutex_(mutex) {
    pthread_mutex_lock(&mutex_.stMutex);
    mutex_.owner.Take();
  }
  ~HoldingOwned() {
    mutex_.owner.Drop();
    pthread_mutex_unlock(&mutex_.stMutex);
  }
  HoldingOwned(const HoldingOwned &) = delete;
  HoldingOwned &operator=(const HoldingOwned &) = delete;

 private:
  OwnedMutex &mutex_;
};

}  // namespace kest
