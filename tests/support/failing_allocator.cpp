// SPDX-License-Identifier: Apache-2.0
// The linker gives the calls of the library and of its tests to the __wrap_ functions.
#include "tests/support/failing_allocator.h"

#include <cerrno>
#include <cstdio>
#include <mutex>

#include <pthread.h>
#include <sys/mman.h>

namespace kest::test {
namespace {

std::mutex g_sitesMutex;
Sites g_sites;

thread_local uint64_t t_u64Calls = 0;
thread_local const void *t_pvSite = nullptr;

// Of the library's own wrappers the site is their caller, not what they do inside.
class InsideWrapper {
 public:
  explicit InsideWrapper(const void *pvSite) { t_pvSite = pvSite; }
  ~InsideWrapper() { t_pvSite = nullptr; }
};

template <typename T>
T *Granted(T *pv, int32_t s32Held = 1) {
  if (pv != nullptr) FailingAllocator::Count(s32Held);
  return pv;
}

void GivenBack(bool bAnything = true) {
  ++t_u64Calls;
  if (bAnything) FailingAllocator::Count(-1);
}

}  // namespace

bool FailingAllocator::RunsOut(const void *pvSite) {
  ++t_u64Calls;
  if (u32UntilFailure_ == 0) return false;
  if (t_pvSite != nullptr) pvSite = t_pvSite;
  const bool bFails = --u32UntilFailure_ == 0;
  const std::lock_guard<std::mutex> lock(g_sitesMutex);
  g_sites.asking.insert(pvSite);
  if (!bFails) return false;
  g_sites.refused.insert(pvSite);
  bHasFailed_ = true;
  errno = ENOMEM;
  return true;
}

void FailingAllocator::Count(int32_t s32Held) {
  s32Held_ += s32Held;
}

Sites SitesSoFar() {
  const std::lock_guard<std::mutex> lock(g_sitesMutex);
  return g_sites;
}

uint64_t MemoryAndLockCalls() {
  return t_u64Calls;
}

}  // namespace kest::test

using kest::test::FailingAllocator;
using kest::test::GivenBack;
using kest::test::Granted;
using kest::test::InsideWrapper;
using kest::test::t_u64Calls;

#define KEST_SITE __builtin_return_address(0)

extern "C" {

#define KEST_WRAPPER(result, name, parameters, arguments) \
  result __real_##name parameters;                        \
  result __wrap_##name parameters {                       \
    const InsideWrapper inside(KEST_SITE);                \
    return __real_##name arguments;                       \
  }
KEST_WRAPPER(uint32_t, ze_kest_Utility_MemoryAlloc, (void **ppv, size_t szt), (ppv, szt))
KEST_WRAPPER(char *, ze_kest_Utility_Strdup, (const char *psz), (psz))
KEST_WRAPPER(FILE *, ze_kest_Utility_FileOpen, (const char *pszPath, const char *pszMode), (pszPath, pszMode))

#define KEST_REQUEST(result, name, parameters, arguments)     \
  result __real_##name parameters;                            \
  result __wrap_##name parameters {                           \
    if (FailingAllocator::RunsOut(KEST_SITE)) return nullptr; \
    return Granted(__real_##name arguments);                  \
  }
KEST_REQUEST(void *, malloc, (size_t szt), (szt))
KEST_REQUEST(void *, calloc, (size_t sztCount, size_t szt), (sztCount, szt))
KEST_REQUEST(char *, strdup, (const char *psz), (psz))
KEST_REQUEST(FILE *, fopen, (const char *pszPath, const char *pszMode), (pszPath, pszMode))
KEST_REQUEST(FILE *, fdopen, (int s32Fd, const char *pszMode), (s32Fd, pszMode))

void *__real_realloc(void *pv, size_t szt);
void *__wrap_realloc(void *pv, size_t szt) {
  const int32_t s32Held = pv == nullptr ? 1 : 0;
  return FailingAllocator::RunsOut(KEST_SITE) ? nullptr : Granted(__real_realloc(pv, szt), s32Held);
}

void *__real_mmap(void *pv, size_t szt, int s32Prot, int s32Flags, int s32Fd, off_t s32Offset);
void *__wrap_mmap(void *pv, size_t szt, int s32Prot, int s32Flags, int s32Fd, off_t s32Offset) {
  if (FailingAllocator::RunsOut(KEST_SITE)) return MAP_FAILED;
  void *pvMapped = __real_mmap(pv, szt, s32Prot, s32Flags, s32Fd, s32Offset);
  if (pvMapped != MAP_FAILED) Granted(pvMapped);
  return pvMapped;
}

int __real_pthread_create(pthread_t *pst, const pthread_attr_t *pstAttr, void *(*pfn)(void *), void *pv);
int __wrap_pthread_create(pthread_t *pst, const pthread_attr_t *pstAttr, void *(*pfn)(void *), void *pv) {
  return FailingAllocator::RunsOut(KEST_SITE) ? EAGAIN : __real_pthread_create(pst, pstAttr, pfn, pv);
}

void __real_free(void *pv);
void __wrap_free(void *pv) {
  GivenBack(pv != nullptr);
  __real_free(pv);
}

int __real_fclose(FILE *pFile);
int __wrap_fclose(FILE *pFile) {
  GivenBack();
  return __real_fclose(pFile);
}

int __real_munmap(void *pv, size_t szt);
int __wrap_munmap(void *pv, size_t szt) {
  GivenBack();
  return __real_munmap(pv, szt);
}

#define KEST_LOCK_CALL(name, parameters, arguments) \
  int __real_##name parameters;                     \
  int __wrap_##name parameters {                    \
    ++t_u64Calls;                                   \
    return __real_##name arguments;                 \
  }
KEST_LOCK_CALL(pthread_once, (pthread_once_t * pst, void (*pfn)()), (pst, pfn))
KEST_LOCK_CALL(pthread_mutex_lock, (pthread_mutex_t * pst), (pst))
KEST_LOCK_CALL(pthread_mutex_trylock, (pthread_mutex_t * pst), (pst))
KEST_LOCK_CALL(pthread_mutex_unlock, (pthread_mutex_t * pst), (pst))
KEST_LOCK_CALL(pthread_cond_wait, (pthread_cond_t * pst, pthread_mutex_t *pstMutex), (pst, pstMutex))
KEST_LOCK_CALL(pthread_cond_timedwait,
               (pthread_cond_t * pst, pthread_mutex_t *pstMutex, const struct timespec *pstUntil),
               (pst, pstMutex, pstUntil))
KEST_LOCK_CALL(pthread_cond_signal, (pthread_cond_t * pst), (pst))
KEST_LOCK_CALL(pthread_cond_broadcast, (pthread_cond_t * pst), (pst))

}  // extern "C"
