// SPDX-License-Identifier: Apache-2.0
// Which filter an engineer has selected for the hook. Commands write it, processing threads read it without a
// lock: a cycle may meet a new name beside an old one.
#pragma once

#include "debug/datapath/switches.h"
#include "utility/core/shared_name.h"

namespace kest {

struct FilterSelection {
  DataPathSwitch eSwitch;    // whether it is enabled
  NameField szPipelineName;  // a prefix; "" matches every pipeline
  NameField szFilterName;    // a prefix; "" matches every filter
  uint32_t u32DumpIndex;     // number of the dump run, part of its file names
};

void SelectFilter(const char *pszFunction, FilterSelection &selection, const char *pszPipelineName,
                  const char *pszFilterName);

// Off, every filter, first run.
void ResetSelection(FilterSelection &selection);

// A filter that has a parent pipeline.
bool Matches(const NameField &szPipelineName, const NameField &szFilterName, const ZE_KEST_Filter_s &filter);

inline bool IsSelected(const FilterSelection &selection, const ZE_KEST_Filter_s &filter) {
  return IsOn(selection.eSwitch) && Matches(selection.szPipelineName, selection.szFilterName, filter);
}

}  // namespace kest
