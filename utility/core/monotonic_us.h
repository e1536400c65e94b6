// SPDX-License-Identifier: Apache-2.0
// The time that measurements and stamps are taken in.
#pragma once

#include <cstdint>

namespace kest {

// Microseconds of the monotonic clock; 0 if the clock cannot be read.
uint64_t MonotonicUs();

}  // namespace kest
