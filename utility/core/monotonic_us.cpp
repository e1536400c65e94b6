// SPDX-License-Identifier: Apache-2.0
#include "utility/core/monotonic_us.h"

#include <ctime>

namespace kest {

// By way of double, on purpose: from 2^53 ns on, some 104 days of uptime, the last nanoseconds are rounded.
uint64_t MonotonicUs() {
  struct timespec stNow = {};
  if (clock_gettime(CLOCK_MONOTONIC, &stNow) != 0) return 0;
  const double f64Ns = static_cast<double>(stNow.tv_sec) * 1e9 + static_cast<double>(stNow.tv_nsec);
  return static_cast<uint64_t>(f64Ns) / 1000;
}

}  // namespace kest
