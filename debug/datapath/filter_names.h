// SPDX-License-Identifier: Apache-2.0
// Whom an engineer means: prefixes of a pipeline's and a filter's name, "" for all. Commands write them,
// processing threads read them without a lock: a cycle may meet a new name beside an old one.
#pragma once

#include "utility/core/shared_name.h"

namespace kest {

struct FilterNames {
  NameField szPipelineName;
  NameField szFilterName;
};

void StoreNames(const char *pszFunction, FilterNames &names, const char *pszPipelineName,
                const char *pszFilterName);
void ClearNames(FilterNames &names);

// Whether the filter, which has a parent pipeline, is meant.
bool Matches(const FilterNames &names, const ZE_KEST_Filter_s &filter);

// The names as they stood.
struct FilterNamesCopy {
  explicit FilterNamesCopy(const FilterNames &names)
      : pipeline(names.szPipelineName), filter(names.szFilterName) {}

  NameCopy pipeline;
  NameCopy filter;
};

}  // namespace kest
