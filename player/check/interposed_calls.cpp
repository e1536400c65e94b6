// SPDX-License-Identifier: Apache-2.0
// Stands in for the C library's allocations and locks in the whole process, so that --check sees what a
// module calls, also through other libraries. Only in the executable, and not under sanitizers, which do the
// same.
#include <cerrno>
#include <cstddef>

#include <dlfcn.h>
#include <pthread.h>

#include "player/check/call_watch.h"

using kest::player::NoteAllocation;
using kest::player::NoteFree;
using kest::player::NoteLock;

namespace {

const bool kIsAnnounced = [] {
  kest::player::AnnounceInterposedCalls();
  return true;
}();

// The C library's own function of the name.
template <typename Function>
Function *Original(const char *name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

void *NoMemory() {
  errno = ENOMEM;
  return nullptr;
}

}  // namespace

extern "C" {

void *__libc_malloc(size_t bytes);
void *__libc_calloc(size_t count, size_t bytes);
void *__libc_realloc(void *old, size_t bytes);
void *__libc_memalign(size_t alignment, size_t bytes);
void __libc_free(void *memory);

void *malloc(size_t bytes) noexcept {
  return NoteAllocation("malloc") ? __libc_malloc(bytes) : NoMemory();
}

void *calloc(size_t count, size_t bytes) noexcept {
  return NoteAllocation("calloc") ? __libc_calloc(count, bytes) : NoMemory();
}

void *realloc(void *old, size_t bytes) noexcept {
  return NoteAllocation("realloc", old == nullptr) ? __libc_realloc(old, bytes) : NoMemory();
}

void *memalign(size_t alignment, size_t bytes) noexcept {
  return NoteAllocation("memalign") ? __libc_memalign(alignment, bytes) : NoMemory();
}

void *aligned_alloc(size_t alignment, size_t bytes) noexcept {
  return NoteAllocation("aligned_alloc") ? __libc_memalign(alignment, bytes) : NoMemory();
}

int posix_memalign(void **memory, size_t alignment, size_t bytes) noexcept {
  void *made = NoteAllocation("posix_memalign") ? __libc_memalign(alignment, bytes) : nullptr;
  if (made == nullptr) return ENOMEM;
  *memory = made;
  return 0;
}

void free(void *memory) noexcept {
  if (memory != nullptr) NoteFree("free");
  __libc_free(memory);
}

int pthread_mutex_lock(pthread_mutex_t *mutex) noexcept {
  static const auto original = Original<int(pthread_mutex_t *)>("pthread_mutex_lock");
  NoteLock("pthread_mutex_lock");
  return original(mutex);
}

int pthread_mutex_trylock(pthread_mutex_t *mutex) noexcept {
  static const auto original = Original<int(pthread_mutex_t *)>("pthread_mutex_trylock");
  NoteLock("pthread_mutex_trylock");
  return original(mutex);
}

int pthread_rwlock_rdlock(pthread_rwlock_t *lock) noexcept {
  static const auto original = Original<int(pthread_rwlock_t *)>("pthread_rwlock_rdlock");
  NoteLock("pthread_rwlock_rdlock");
  return original(lock);
}

int pthread_rwlock_wrlock(pthread_rwlock_t *lock) noexcept {
  static const auto original = Original<int(pthread_rwlock_t *)>("pthread_rwlock_wrlock");
  NoteLock("pthread_rwlock_wrlock");
  return original(lock);
}

}  // extern "C"
