// SPDX-License-Identifier: Apache-2.0
// What is switched on of the data path. All switches are bits of one word, in a cache line of its own: a
// cycle with everything off tests it once and never waits for what other threads write beside it.
#pragma once

#include <cstdint>

#include "utility/core/shared_value.h"

namespace kest {

enum DataPathSwitch : uint32_t {
  kPrintFilterInfo = 1u << 0,
  kDumpInput = 1u << 1,
  kDumpOutput = 1u << 2,
  kOutputSineWave = 1u << 3,
  kMeasureLatency = 1u << 4,
  kTraceIo = 1u << 5,
};

// Those that the hook serves.
constexpr uint32_t kHookSwitches =
    kPrintFilterInfo | kDumpInput | kDumpOutput | kOutputSineWave | kMeasureLatency;

struct alignas(64) DataPathSwitches {
  uint32_t u32On;
};

extern DataPathSwitches _stKestSwitches;

inline bool IsAnyHookSwitchOn() {
  return (Load(_stKestSwitches.u32On) & kHookSwitches) != 0;
}

// Who finds a switch on finds what was set before it was switched on. Off costs no barrier.
inline bool IsOn(DataPathSwitch eSwitch) {
  if ((Load(_stKestSwitches.u32On) & eSwitch) == 0) return false;
  return (__atomic_load_n(&_stKestSwitches.u32On, __ATOMIC_ACQUIRE) & eSwitch) != 0;
}

inline void SwitchOn(DataPathSwitch eSwitch) {
  __atomic_fetch_or(&_stKestSwitches.u32On, eSwitch, __ATOMIC_RELEASE);
}

inline void SwitchOff(DataPathSwitch eSwitch) {
  __atomic_fetch_and(&_stKestSwitches.u32On, ~uint32_t{eSwitch}, __ATOMIC_RELEASE);
}

}  // namespace kest
