// SPDX-License-Identifier: Apache-2.0
// The clock for measurements and time stamps.
#pragma once

#include <cstdint>

namespace kest {

// Microseconds of the monotonic clock; 0 if the clock cannot be read.
uint64_t MonotonicUs();

}  // namespace kest
