// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/filter_names.h"

#include "utility/core/begins_with.h"

namespace kest {

void StoreNames(const char *pszFunction, FilterNames &names, const char *pszPipelineName,
                const char *pszFilterName) {
  StoreName(pszFunction, names.szPipelineName, pszPipelineName);
  StoreName(pszFunction, names.szFilterName, pszFilterName);
}

void ClearNames(FilterNames &names) {
  ClearName(names.szPipelineName);
  ClearName(names.szFilterName);
}

bool Matches(const FilterNames &names, const ZE_KEST_Filter_s &filter) {
  const FilterNamesCopy copy(names);
  return BeginsWith(filter.szName, copy.filter.c_str()) &&
         BeginsWith(filter.pstParentPipeline->szName, copy.pipeline.c_str());
}

}  // namespace kest
