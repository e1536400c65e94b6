// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/filter_selection.h"

#include "utility/core/begins_with.h"

namespace kest {

void SelectFilter(const char *pszFunction, FilterSelection &selection, const char *pszPipelineName,
                  const char *pszFilterName) {
  StoreName(pszFunction, selection.szPipelineName, pszPipelineName);
  StoreName(pszFunction, selection.szFilterName, pszFilterName);
}

void ResetSelection(FilterSelection &selection) {
  SwitchOff(selection.eSwitch);
  ClearName(selection.szPipelineName);
  ClearName(selection.szFilterName);
  Store(selection.u32DumpIndex, uint32_t{0});
}

bool Matches(const NameField &szPipelineName, const NameField &szFilterName, const ZE_KEST_Filter_s &filter) {
  return BeginsWith(filter.szName, NameCopy(szFilterName).c_str()) &&
         BeginsWith(filter.pstParentPipeline->szName, NameCopy(szPipelineName).c_str());
}

}  // namespace kest
