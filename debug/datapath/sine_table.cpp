// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/sine_table.h"

// Not an exact sine, on purpose: what is measured against it knows these values.
#define KEST_SINE_1K48(X)                                                                                \
  X(0), X(2144), X(4250), X(6284), X(8211), X(9997), X(11612), X(13028), X(14222), X(15173), X(15863),   \
      X(16282), X(16422), X(16282), X(15864), X(15174), X(14224), X(13030), X(11614), X(10000), X(8215), \
      X(6289), X(4255), X(2149), X(7), X(-2137), X(-4244), X(-6276), X(-8203), X(-9990), X(-11605),      \
      X(-13022), X(-14217), X(-15168), X(-15859), X(-16280), X(-16423), X(-16284), X(-15867), X(-15179), \
      X(-14232), X(-13041), X(-11627), X(-10014), X(-8231), X(-6307), X(-4274), X(-2169)
#define KEST_AS_16_BIT(value) value
#define KEST_AS_32_BIT(value) ((value)*65536)

const int16_t kest::kSine1K48[ZE_KEST_SINE_SAMPLES] = {KEST_SINE_1K48(KEST_AS_16_BIT)};
const int32_t _as32KestSine1K48Mono[ZE_KEST_SINE_SAMPLES] = {KEST_SINE_1K48(KEST_AS_32_BIT)};
