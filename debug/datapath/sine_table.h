// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "ze_kest/debug.h"

namespace kest {

// The upper halves of _as32KestSine1K48Mono.
extern const int16_t kSine1K48[ZE_KEST_SINE_SAMPLES];

}  // namespace kest
