// SPDX-License-Identifier: Apache-2.0
// The mutexes of the debug layer. A failing call of the three with wrappers is reported and otherwise
// ignored.
//
// An unlock by a thread that does not hold the mutex does nothing: shut-down unlocks all three, no matter who
// holds them, and must not take a lock away from its holder.
//
// A thread that holds one may take another only in the order in which they stand here. The child of a fork
// finds all of them free.
#pragma once

#include <pthread.h>

#include "debug/base/owned_mutex.h"
#include "debug/base/thread_safety.h"

namespace kest {

// The registry and the filter-io watch list. The first: a callback, which runs while it is held, may fork.
extern pthread_mutex_t _stKestDebugMutex;
extern OwnedMutex g_startMutex;      // the creation of the command thread, until the layer counts as started
extern OwnedMutex g_logSwitchMutex;  // whether the log goes to its file
extern OwnedMutex g_baseMutex;       // the base initialisation
extern OwnedMutex g_testThreadsMutex;         // creation and end of the test threads
extern pthread_mutex_t _stKestDebugShmMutex;  // the shared settings
extern pthread_mutex_t _stKestDebugLogMutex;  // the log file

inline constexpr LockTag kDebugLock;     // stands for _stKestDebugMutex
inline constexpr LockTag kDebugShmLock;  // stands for _stKestDebugShmMutex
inline constexpr LockTag kDebugLogLock;  // stands for _stKestDebugLogMutex

// Sets the three up and guards forks. Runs once per process, before the first lock.
void _ZE_KEST_Debug_MutexInit();

void _ZE_KEST_Debug_Mutex_Lock() KEST_ACQUIRES_LOCK(kDebugLock);
void _ZE_KEST_Debug_Mutex_Unlock() KEST_RELEASES_LOCK(kDebugLock);
void _ZE_KEST_Debug_ShmMutex_Lock() KEST_ACQUIRES_LOCK(kDebugShmLock);
void _ZE_KEST_Debug_ShmMutex_Unlock() KEST_RELEASES_LOCK(kDebugShmLock);
void _ZE_KEST_Debug_LogMutex_Lock() KEST_ACQUIRES_LOCK(kDebugLogLock);
void _ZE_KEST_Debug_LogMutex_Unlock() KEST_RELEASES_LOCK(kDebugLogLock);

template <void (*kLock)(), void (*kUnlock)()>
class Holding {
 public:
  Holding() { kLock(); }
  ~Holding() { kUnlock(); }
  Holding(const Holding &) = delete;
  Holding &operator=(const Holding &) = delete;
};

// Each holds its mutex for a scope. Classes of their own: clang 14 cannot tell a lock from a template
// argument.
class KEST_SCOPED_CAPABILITY HoldingDebug : Holding<_ZE_KEST_Debug_Mutex_Lock, _ZE_KEST_Debug_Mutex_Unlock> {
 public:
  HoldingDebug() KEST_ACQUIRES_LOCK(kDebugLock) = default;
  ~HoldingDebug() KEST_RELEASES_LOCK() = default;
};

class KEST_SCOPED_CAPABILITY HoldingShm
    : Holding<_ZE_KEST_Debug_ShmMutex_Lock, _ZE_KEST_Debug_ShmMutex_Unlock> {
 public:
  HoldingShm() KEST_ACQUIRES_LOCK(kDebugShmLock) = default;
  ~HoldingShm() KEST_RELEASES_LOCK() = default;
};

class KEST_SCOPED_CAPABILITY HoldingLog
    : Holding<_ZE_KEST_Debug_LogMutex_Lock, _ZE_KEST_Debug_LogMutex_Unlock> {
 public:
  HoldingLog() KEST_ACQUIRES_LOCK(kDebugLogLock) = default;
  ~HoldingLog() KEST_RELEASES_LOCK() = default;
};

}  // namespace kest
