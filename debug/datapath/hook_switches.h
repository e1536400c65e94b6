// SPDX-License-Identifier: Apache-2.0
// What the hook has to do in a cycle. All switches are bits of one word: a cycle with everything off tests it
// once and touches one cache line.
#pragma once

#include <cstdint>

#include "utility/core/shared_value.h"

namespace kest {

enum HookSwitch : uint32_t {
  kPrintFilterInfo = 1u << 0,
  kDumpInput = 1u << 1,
  kDumpOutput = 1u << 2,
  kOutputSineWave = 1u << 3,
  kMeasureLatency = 1u << 4,
};

extern uint32_t _u32KestHookSwitches;

inline bool IsAnyHookSwitchOn() {
  return Load(_u32KestHookSwitches) != 0;
}

// Who finds a switch on finds what was set before it was switched on.
inline bool IsOn(HookSwitch eSwitch) {
  return (__atomic_load_n(&_u32KestHookSwitches, __ATOMIC_ACQUIRE) & eSwitch) != 0;
}

inline void SwitchOn(HookSwitch eSwitch) {
  __atomic_fetch_or(&_u32KestHookSwitches, eSwitch, __ATOMIC_RELEASE);
}

inline void SwitchOff(HookSwitch eSwitch) {
  __atomic_fetch_and(&_u32KestHookSwitches, ~uint32_t{eSwitch}, __ATOMIC_RELEASE);
}

}  // namespace kest
