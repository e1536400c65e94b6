// SPDX-License-Identifier: Apache-2.0
#include <limits>

#include <unistd.h>

#include "ze_kest/utility.h"

#include "utility/core/report.h"

namespace {

// Saturates at the last second that time_t can hold (it has 32 bits on the target).
time_t LaterSecond(time_t s32Second, uint64_t u64Seconds) {
  constexpr time_t kLast = std::numeric_limits<time_t>::max();
  if (u64Seconds > static_cast<uint64_t>(kLast - s32Second)) return kLast;
  return s32Second + static_cast<time_t>(u64Seconds);
}

}  // namespace

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
  if (clock_gettime(CLOCK_MONOTONIC, pstOut) != 0) return;
  pstOut->tv_nsec += static_cast<long>(u64Us % kUsPerSecond) * 1000;
  const bool bCarry = pstOut->tv_nsec >= kNsPerSecond;
  if (bCarry) pstOut->tv_nsec -= kNsPerSecond;
  pstOut->tv_sec = LaterSecond(pstOut->tv_sec, u64Us / kUsPerSecond + (bCarry ? 1 : 0));
}
