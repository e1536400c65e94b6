// SPDX-License-Identifier: Apache-2.0
// Named blocks of memory shared between processes. Each is a mapped file accompanied by a lock file.
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ze_kest/utility.h"

#include "utility/core/debug_dir.h"
#include "utility/core/guarded_open.h"
#include "utility/core/report.h"

namespace {

constexpr const char *kAlloc = "ze_kest_Utility_ShmAlloc";
constexpr const char *kFree = "ze_kest_Utility_ShmFree";
constexpr const char *kBlockPrefix = KEST_DEBUG_PATH("shm_");
constexpr const char *kLockPrefix = KEST_DEBUG_PATH("shm_flock_");

using ShmPath = char[128];

// A path that is too long is cut; only a formatting error fails.
bool FormatPath(ShmPath &szPath, const char *pszPrefix, const char *pszName) {
  return snprintf(szPath, sizeof(szPath), "%s%s", pszPrefix, pszName) >= 0;
}

// Creates a file that every process may open, whatever the umask. Deliberate: the umask is left at 077, not
// restored.
int CreateForAll(const char *pszPath, int s32ExtraFlags) {
  umask(0);
  const int s32Fd =
      kest::OpenGuarded(pszPath, kest::FileKind::kRegular, O_RDWR | O_CREAT | s32ExtraFlags, 0666);
  const int s32Error = errno;
  umask(077);
  errno = s32Error;
  return s32Fd;
}

void RemoveFile(const char *pszFunction, const char *pszPath) {
  if (unlink(pszPath) == 0) return;
  const int s32Error = errno;
  KEST_ERR_AS(pszFunction, "Err! unlink %s fails, errno=%s\n", pszPath, kest::ErrorText(s32Error).c_str());
}

void DiscardBlock(int s32Fd, const char *pszPath) {
  close(s32Fd);
  RemoveFile(kAlloc, pszPath);
}

// Opens the file of the block, or creates it. If two processes create it at the same time, one of them fails.
bool OpenBlock(const char *pszPath, int *ps32Fd, bool *pbCreated) {
  *pbCreated = false;
  *ps32Fd = kest::OpenGuarded(pszPath, kest::FileKind::kRegular, O_RDWR);
  const int s32OpenError = errno;
  KEST_INFO_AS(kAlloc, "Open an existed shared memory=%d\n", *ps32Fd);
  if (*ps32Fd >= 0) return true;
  if (s32OpenError != ENOENT) {
    KEST_ERR_AS(kAlloc, "Err! Shm init (%s) return %d, errno=(%d, %s)\n", pszPath, *ps32Fd, s32OpenError,
                kest::ErrorText(s32OpenError).c_str());
    return false;
  }

  KEST_INFO_AS(kAlloc, "Shm open (%s) return %d, errno=(%d, %s), try to create\n", pszPath, *ps32Fd,
               s32OpenError, kest::ErrorText(s32OpenError).c_str());
  *ps32Fd = CreateForAll(pszPath, O_EXCL);
  *pbCreated = *ps32Fd >= 0;
  if (*pbCreated) return true;
  const int s32CreateError = errno;
  KEST_ERR_AS(kAlloc, "Err! Shm create (%s) return %d, errno=(%d, %s)\n", pszPath, *ps32Fd, s32CreateError,
              kest::ErrorText(s32CreateError).c_str());
  return false;
}

// Sets the length and reserves the space: on a full disk, writing to the mapping would otherwise kill the
// process.
bool ReserveBlock(int s32Fd) {
  if (ftruncate(s32Fd, ZE_KEST_SHM_SIZE) != 0) return false;
  int s32Reserved = 0;
  do {
    s32Reserved = fallocate(s32Fd, 0, 0, ZE_KEST_SHM_SIZE);
  } while (s32Reserved != 0 && errno == EINTR);
  return s32Reserved == 0 || errno == EOPNOTSUPP || errno == ENOSYS;
}

bool MapBlock(int s32Fd, bool bCreated, void **ppvAddr) {
  if (!ReserveBlock(s32Fd)) {
    const int s32Error = errno;
    KEST_ERR_AS(kAlloc, "Err! ftruncate fails, errno=%s\n", kest::ErrorText(s32Error).c_str());
    return false;
  }
  *ppvAddr = mmap(nullptr, ZE_KEST_SHM_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, s32Fd, 0);
  if (*ppvAddr == MAP_FAILED) {
    KEST_ERR_AS(kAlloc, "Err! mmap fails\n");
    return false;
  }
  // A new file already reads as zeros. It is not touched here: if somebody has emptied it meanwhile, that
  // would kill the process.
  KEST_INFO_AS(kAlloc, "mmap=%p, bNewCreate=%d\n", *ppvAddr, bCreated ? 1 : 0);
  return true;
}

bool OpenLock(const char *pszPath, int *ps32Fd) {
  *ps32Fd = kest::OpenGuarded(pszPath, kest::FileKind::kRegular, O_RDWR);
  int s32Error = errno;
  KEST_INFO_AS(kAlloc, "Open an existed flock shared memory=%d\n", *ps32Fd);
  if (*ps32Fd < 0 && s32Error == ENOENT) {
    KEST_INFO_AS(kAlloc, "FlockShm open (%s) return %d, errno=(%d, %s), try to create\n", pszPath, *ps32Fd,
                 s32Error, kest::ErrorText(s32Error).c_str());
    *ps32Fd = CreateForAll(pszPath, 0);
    s32Error = errno;
  }
  if (*ps32Fd >= 0) return true;
  KEST_ERR_AS(kAlloc, "Err! file lock path %s, return %d, errno=%s\n", pszPath, *ps32Fd,
              kest::ErrorText(s32Error).c_str());
  return false;
}

}  // namespace

uint32_t ze_kest_Utility_ShmAlloc(const char *pszName, int *ps32ShmFd, int *ps32LockFd, void **ppvAddr) {
  KEST_REQUIRE(pszName != nullptr, "pszName is NULL.\n");
  KEST_REQUIRE(ps32ShmFd != nullptr, "ps32ShmFd is NULL.\n");
  KEST_REQUIRE(ps32LockFd != nullptr, "ps32LockFd is NULL.\n");
  KEST_REQUIRE(ppvAddr != nullptr, "ppvAddr is NULL.\n");

  ShmPath szBlock;
  if (!FormatPath(szBlock, kBlockPrefix, pszName)) return ZE_KEST_NOTHING_TO_PROCESS;
  bool bCreated = false;
  if (!OpenBlock(szBlock, ps32ShmFd, &bCreated)) return ZE_KEST_NOT_INITIALISED;
  KEST_INFO("ShmPath=%s, ShmFd=%d\n", szBlock, *ps32ShmFd);
  // Deliberate: a file that cannot be used is removed even if it existed before.
  if (!MapBlock(*ps32ShmFd, bCreated, ppvAddr)) {
    DiscardBlock(*ps32ShmFd, szBlock);
    return ZE_KEST_NOT_INITIALISED;
  }

  ShmPath szLock;
  if (!FormatPath(szLock, kLockPrefix, pszName)) return ZE_KEST_NOTHING_TO_PROCESS;
  if (!OpenLock(szLock, ps32LockFd)) {
    DiscardBlock(*ps32ShmFd, szBlock);
    munmap(*ppvAddr, ZE_KEST_SHM_SIZE);
    *ppvAddr = nullptr;
    return ZE_KEST_NOT_INITIALISED;
  }
  KEST_INFO("ShmFlockPath=%s, lockFd=%d\n", szLock, *ps32LockFd);
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_ShmFree(const char *pszName, const int *ps32ShmFd, const int *ps32LockFd,
                                 void *pvAddr) {
  KEST_REQUIRE(pszName != nullptr, "pszName is NULL.\n");
  KEST_REQUIRE(ps32ShmFd != nullptr, "ps32ShmFd is NULL.\n");
  KEST_REQUIRE(ps32LockFd != nullptr, "ps32LockFd is NULL.\n");
  KEST_REQUIRE(pvAddr != nullptr, "pvAddr is NULL.\n");

  ShmPath szPath;
  close(*ps32LockFd);
  if (!FormatPath(szPath, kLockPrefix, pszName)) return ZE_KEST_FAILED;
  RemoveFile(kFree, szPath);
  close(*ps32ShmFd);
  if (!FormatPath(szPath, kBlockPrefix, pszName)) return ZE_KEST_FAILED;
  RemoveFile(kFree, szPath);
  munmap(pvAddr, ZE_KEST_SHM_SIZE);
  return ZE_KEST_OK;
}
