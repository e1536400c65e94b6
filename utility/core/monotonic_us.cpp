// SPDX-License-Identifier: Apache-2.0
#include "utility/core/monotonic_us.h"

#include <ctime>

namespace kest {

// Deliberate: computed in double, so nanoseconds are rounded from 2^53 ns (about 104 days) of uptime on.
uint64_t MonotonicUs() {
  struct timespec stNow = {};
  if (clock_gettime(CLOCK_MONOTONIC, &stNow) != 0) return 0;
  const double f64Ns = static_cast<double>(stNow.tv_sec) * 1e9 + static_cast<double>(stNow.tv_nsec);
  return static_cast<uint64_t>(f64Ns) / 1000;
}

}  // namespace kest
