/* SPDX-License-Identifier: Apache-2.0
 *
 * Memory between two guard pages, with a copy of it beside. */
#ifndef KEST_HARNESS_GUARDED_H
#define KEST_HARNESS_GUARDED_H

#include <stddef.h>
#include <stdint.h>

typedef struct Guarded_s {
  uint8_t *pu8Data; /* sztBytes; NULL: none */
  size_t sztBytes;
  uint8_t *pu8Copy; /* of the data, see GuardedRemember */
  uint8_t *pu8Map;  /* the first guard page */
  size_t sztMap;
  size_t sztPage;
} Guarded_s;

/* eGuard: ZE_KEST_HarnessGuard_e. Filled with the marker. 1, or 0 when memory is exhausted. Of 0 bytes:
 * nothing, 1. */
int GuardedMake(Guarded_s *pst, size_t sztBytes, uint32_t eGuard, uint8_t u8Marker);
void GuardedFree(Guarded_s *pst);
void GuardedRemember(Guarded_s *pst);

/* Bytes by which the address lies behind the data (1: the first byte) or before it (-1: the last one), when
 * it lies in a guard page; else 0. */
long GuardedDistance(const Guarded_s *pst, const void *pvAddress);

#endif
