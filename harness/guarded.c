/* SPDX-License-Identifier: Apache-2.0 */
#define _GNU_SOURCE
#include "harness/guarded.h"

#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include "ze_kest/harness.h"

int GuardedMake(Guarded_s *pst, size_t sztBytes, uint32_t eGuard, uint8_t u8Marker) {
  memset(pst, 0, sizeof(*pst));
  if (sztBytes == 0) return 1;
  const size_t sztPage = (size_t)sysconf(_SC_PAGESIZE);
  const size_t sztFar = eGuard == ZE_KEST_HARNESS_GUARD_FAR ? sztPage : 0;
  const size_t sztInner = (sztBytes + sztPage - 1) / sztPage * sztPage + 2 * sztFar;
  pst->sztPage = sztPage;
  pst->sztMap = sztInner + 2 * sztPage;
  pst->pu8Copy = malloc(sztBytes);
  uint8_t *pu8Map = mmap(NULL, pst->sztMap, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pu8Map != MAP_FAILED) pst->pu8Map = pu8Map;
  if (pst->pu8Copy == NULL || pst->pu8Map == NULL ||
      mprotect(pu8Map + sztPage, sztInner, PROT_READ | PROT_WRITE) != 0) {
    GuardedFree(pst);
    return 0;
  }
  pst->pu8Data = pu8Map + sztPage + (eGuard == ZE_KEST_HARNESS_GUARD_BEHIND ? sztInner - sztBytes : sztFar);
  pst->sztBytes = sztBytes;
  memset(pu8Map + sztPage, u8Marker, sztInner);
  return 1;
}

void GuardedFree(Guarded_s *pst) {
  if (pst->pu8Map != NULL) munmap(pst->pu8Map, pst->sztMap);
  free(pst->pu8Copy);
  memset(pst, 0, sizeof(*pst));
}

void GuardedRemember(Guarded_s *pst) {
  if (pst->pu8Data != NULL) memcpy(pst->pu8Copy, pst->pu8Data, pst->sztBytes);
}

long GuardedDistance(const Guarded_s *pst, const void *pvAddress) {
  if (pst->pu8Data == NULL) return 0;
  const uintptr_t u64Address = (uintptr_t)pvAddress;
  const uintptr_t u64Data = (uintptr_t)pst->pu8Data;
  const uintptr_t u64Map = (uintptr_t)pst->pu8Map;
  if (u64Address >= u64Map && u64Address < u64Map + pst->sztPage) return -(long)(u64Data - u64Address);
  const uintptr_t u64Last = u64Map + pst->sztMap - pst->sztPage;
  if (u64Address >= u64Last && u64Address < u64Map + pst->sztMap) {
    return (long)(u64Address - (u64Data + pst->sztBytes)) + 1;
  }
  return 0;
}
