// SPDX-License-Identifier: Apache-2.0
#include "debug/base/debug_mutex.h"

#include <iterator>

#include "debug/base/fork_guard.h"
#include "debug/base/inside_log.h"
#include "utility/core/report.h"

namespace kest {

pthread_mutex_t _stKestDebugMutex;
pthread_mutex_t _stKestDebugShmMutex;
pthread_mutex_t _stKestDebugLogMutex;
OwnedMutex g_startMutex;
OwnedMutex g_logSwitchMutex;
OwnedMutex g_baseMutex;
OwnedMutex g_testThreadsMutex;

namespace {

LockOwner g_owner;
LockOwner g_shmOwner;
LockOwner g_logOwner;

// In the order of their use.
ForkedMutex g_aForked[] = {
    {&_stKestDebugMutex, &g_owner},
    {&g_startMutex.stMutex, &g_startMutex.owner},
    {&g_logSwitchMutex.stMutex, &g_logSwitchMutex.owner},
    {&g_baseMutex.stMutex, &g_baseMutex.owner},
    {&g_testThreadsMutex.stMutex, &g_testThreadsMutex.owner},
    {&_stKestDebugShmMutex, &g_shmOwner},
    {&_stKestDebugLogMutex, &g_logOwner},
};

// InsideLog: a report from here must not enter the library's log, which would lock the log mutex.
void InitialiseMutexes() {
  constexpr const char *kFunction = "_ZE_KEST_Debug_MutexInit";
  const InsideLog inside;
  KEST_THREAD_CALL_AS(kFunction, pthread_mutex_init(&_stKestDebugMutex, 0));
  KEST_THREAD_CALL_AS(kFunction, pthread_mutex_init(&_stKestDebugShmMutex, 0));
  KEST_THREAD_CALL_AS(kFunction, pthread_mutex_init(&_stKestDebugLogMutex, 0));
  GuardForks(g_aForked, std::size(g_aForked));
}

}  // namespace

// The mutexes are never set up again: one may be locked before the layer starts and stay locked across a
// shut-down.
void _ZE_KEST_Debug_MutexInit() {
  static pthread_once_t once = PTHREAD_ONCE_INIT;
  pthread_once(&once, InitialiseMutexes);
}

// A macro because the reports quote the calls, with the name of the mutex. Unchecked: a tag stands for it,
// and the unlock may do nothing.
#define KEST_DEFINE_LOCK(lock, unlock, mutex, owner)                     \
  KEST_UNCHECKED_LOCKS void lock() {                                     \
    _ZE_KEST_Debug_MutexInit();                                          \
    if (KEST_THREAD_CALL(pthread_mutex_lock(&mutex)) == 0) owner.Take(); \
  }                                                                      \
  KEST_UNCHECKED_LOCKS void unlock() {                                   \
    if (!owner.IsMine()) return;                                         \
    owner.Drop();                                                        \
    KEST_THREAD_CALL(pthread_mutex_unlock(&mutex));                      \
  }

KEST_DEFINE_LOCK(_ZE_KEST_Debug_Mutex_Lock, _ZE_KEST_Debug_Mutex_Unlock, _stKestDebugMutex, g_owner)
KEST_DEFINE_LOCK(_ZE_KEST_Debug_ShmMutex_Lock, _ZE_KEST_Debug_ShmMutex_Unlock, _stKestDebugShmMutex,
                 g_shmOwner)
KEST_DEFINE_LOCK(_ZE_KEST_Debug_LogMutex_Lock, _ZE_KEST_Debug_LogMutex_Unlock, _stKestDebugLogMutex,
                 g_logOwner)

}  // namespace kest
