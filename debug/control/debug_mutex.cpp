// SPDX-License-Identifier: Apache-2.0
#include "debug/control/debug_mutex.h"

#include "debug/control/lock_owner.h"
#include "utility/core/report.h"

namespace kest {

pthread_mutex_t _stKestDebugMutex = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t _stKestDebugShmMutex = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t _stKestDebugLogMutex = PTHREAD_MUTEX_INITIALIZER;

namespace {

LockOwner g_owner;
LockOwner g_shmOwner;
LockOwner g_logOwner;
bool g_bInitialised = false;

}  // namespace

// Once per process: a thread may hold a mutex across a shut-down and a new start.
void _ZE_KEST_Debug_MutexInit() {
  if (g_bInitialised) return;
  g_bInitialised = true;
  KEST_THREAD_CALL(pthread_mutex_init(&_stKestDebugMutex, 0));
  KEST_THREAD_CALL(pthread_mutex_init(&_stKestDebugShmMutex, 0));
  KEST_THREAD_CALL(pthread_mutex_init(&_stKestDebugLogMutex, 0));
}

void _ZE_KEST_Debug_Mutex_Lock() {
  if (KEST_THREAD_CALL(pthread_mutex_lock(&_stKestDebugMutex)) == 0) g_owner.Take();
}

void _ZE_KEST_Debug_Mutex_Unlock() {
  if (!g_owner.IsMine()) return;
  g_owner.Drop();
  KEST_THREAD_CALL(pthread_mutex_unlock(&_stKestDebugMutex));
}

void _ZE_KEST_Debug_ShmMutex_Lock() {
  if (KEST_THREAD_CALL(pthread_mutex_lock(&_stKestDebugShmMutex)) == 0) g_shmOwner.Take();
}

void _ZE_KEST_Debug_ShmMutex_Unlock() {
  if (!g_shmOwner.IsMine()) return;
  g_shmOwner.Drop();
  KEST_THREAD_CALL(pthread_mutex_unlock(&_stKestDebugShmMutex));
}

void _ZE_KEST_Debug_LogMutex_Lock() {
  if (KEST_THREAD_CALL(pthread_mutex_lock(&_stKestDebugLogMutex)) == 0) g_logOwner.Take();
}

void _ZE_KEST_Debug_LogMutex_Unlock() {
  if (!g_logOwner.IsMine()) return;
  g_logOwner.Drop();
  KEST_THREAD_CALL(pthread_mutex_unlock(&_stKestDebugLogMutex));
}

}  // namespace kest
