/* SPDX-License-Identifier: Apache-2.0 */
#include "ze_kest/harness.h"

static uint32_t NextRandom(uint32_t *pu32Seed) {
  *pu32Seed = *pu32Seed * 1664525u + 1013904223u;
  const uint32_t u32Mixed = (*pu32Seed ^ (*pu32Seed >> 16)) * 0x45D9F3Bu;
  return u32Mixed ^ (u32Mixed >> 15);
}

void ze_kest_Harness_Noise(int32_t *ps32Samples, uint32_t u32Count, uint32_t u32BitWidth,
                           uint32_t *pu32Seed) {
  for (uint32_t i = 0; i < u32Count; ++i) {
    const int32_t s32Sample = (int32_t)NextRandom(pu32Seed);
    ps32Samples[i] = u32BitWidth == 16 ? s32Sample / 65536 : s32Sample;
  }
}

uint32_t ze_kest_Harness_Compare(const int32_t *ps32A, const int32_t *ps32B, uint32_t u32Count,
                                 uint32_t u32Tolerance) {
  for (uint32_t i = 0; i < u32Count; ++i) {
    const int64_t s64Apart = (int64_t)ps32A[i] - ps32B[i];
    if ((s64Apart < 0 ? -s64Apart : s64Apart) > u32Tolerance) return i;
  }
  return u32Count;
}
