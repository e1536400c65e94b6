// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include "ze_kest/utility.h"

#include "utility/core/report.h"

void ze_kest_Utility_DelayMs(unsigned int u32Ms) {
  usleep(u32Ms * 1000);
}

void ze_kest_Utility_MicrosecondToTimespec(struct timespec *pstOut, uint64_t u64Us) {
  constexpr uint64_t kUsPerSecond = 1000000;
  constexpr long kNsPerSecond = 1000000000;
  if (pstOut == nullptr) {
    KEST_ERR("pstOut is NULL.\n");
    return;
  }
  *pstOut = {};
  clock_gettime(CLOCK_MONOTONIC, pstOut);
  pstOut->tv_sec += static_cast<time_t>(u64Us / kUsPerSecond);
  pstOut->tv_nsec += static_cast<long>(u64Us % kUsPerSecond) * 1000;
  if (pstOut->tv_nsec >= kNsPerSecond) {
    pstOut->tv_nsec -= kNsPerSecond;
    pstOut->tv_sec += 1;
  }
}
