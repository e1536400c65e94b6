// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

// Deliberate: not an exact sine. Whatever is measured against it relies on these values.
#define S(value) ((value)*65536)

const int32_t _as32KestSine1K48Mono[ZE_KEST_SINE_SAMPLES] = {
    S(0),      S(2144),   S(4250),   S(6284),   S(8211),   S(9997),   S(11612),  S(13028),
    S(14222),  S(15173),  S(15863),  S(16282),  S(16422),  S(16282),  S(15864),  S(15174),
    S(14224),  S(13030),  S(11614),  S(10000),  S(8215),   S(6289),   S(4255),   S(2149),
    S(7),      S(-2137),  S(-4244),  S(-6276),  S(-8203),  S(-9990),  S(-11605), S(-13022),
    S(-14217), S(-15168), S(-15859), S(-16280), S(-16423), S(-16284), S(-15867), S(-15179),
    S(-14232), S(-13041), S(-11627), S(-10014), S(-8231),  S(-6307),  S(-4274),  S(-2169),
};
