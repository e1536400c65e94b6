// SPDX-License-Identifier: Apache-2.0
// The three mutexes of the debug layer. A failing call is reported and otherwise ignored.
//
// An unlock by a thread that does not hold the mutex does nothing: shut-down unlocks all three, no matter who
// holds them, and must not take a lock away from its holder.
#pragma once

#include <pthread.h>

namespace kest {

extern pthread_mutex_t _stKestDebugMutex;     // the registry and the filter-io watch list
extern pthread_mutex_t _stKestDebugShmMutex;  // the shared settings
extern pthread_mutex_t _stKestDebugLogMutex;  // the log file

void _ZE_KEST_Debug_MutexInit();

void _ZE_KEST_Debug_Mutex_Lock();
void _ZE_KEST_Debug_Mutex_Unlock();
void _ZE_KEST_Debug_ShmMutex_Lock();
void _ZE_KEST_Debug_ShmMutex_Unlock();
void _ZE_KEST_Debug_LogMutex_Lock();
void _ZE_KEST_Debug_LogMutex_Unlock();

// Holds one of the mutexes for a scope.
template <void (*kLock)(), void (*kUnlock)()>
class Holding {
 public:
  Holding() { kLock(); }
  ~Holding() { kUnlock(); }
  Holding(const Holding &) = delete;
  Holding &operator=(const Holding &) = delete;
};

using HoldingDebug = Holding<_ZE_KEST_Debug_Mutex_Lock, _ZE_KEST_Debug_Mutex_Unlock>;
using HoldingShm = Holding<_ZE_KEST_Debug_ShmMutex_Lock, _ZE_KEST_Debug_ShmMutex_Unlock>;
using HoldingLog = Holding<_ZE_KEST_Debug_LogMutex_Lock, _ZE_KEST_Debug_LogMutex_Unlock>;

}  // namespace kest
