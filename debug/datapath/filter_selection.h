// SPDX-License-Identifier: Apache-2.0
// The filters that an engineer has selected for one instrument of the hook.
#pragma once

#include "debug/datapath/filter_names.h"
#include "debug/datapath/switches.h"

namespace kest {

struct FilterSelection : FilterNames {
  DataPathSwitch eSwitch;     // whether the instrument is on
  uint32_t u32DumpIndex = 0;  // number of the dump run, part of its file names
};

inline bool IsSelected(const FilterSelection &selection, const ZE_KEST_Filter_s &filter) {
  return IsOn(selection.eSwitch) && Matches(selection, filter);
}

// Switches the instrument off, selects every filter and goes back to run 0.
inline void ResetSelection(FilterSelection &selection) {
  SwitchOff(selection.eSwitch);
  ClearNames(selection);
  Store(selection.u32DumpIndex, uint32_t{0});
}

}  // namespace kest
