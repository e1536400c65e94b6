// SPDX-License-Identifier: Apache-2.0
// The switches of the data path, as bits of one word in a cache line of its own: a cycle with everything off
// tests the word once and never waits for other threads' writes to neighbouring data.
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

// The switches that the hook acts on.
constexpr uint32_t kHookSwitches =
    kPrintFilterInfo | kDumpInput | kDumpOutput | kOutputSineWave | kMeasureLatency;

struct alignas(64) DataPathSwitches {
  uint32_t u32On;
};

extern DataPathSwitches _stKestSwitches;

inline bool IsAnyHookSwitchOn() {
  return (Load(_stKestSwitches.u32On) & kHookSwitches) != 0;
}

// A thread that sees a switch on also sees everything set before it was switched on. A switch that is off
// costs no barrier.
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
