// SPDX-License-Identifier: Apache-2.0
// Selects filters by prefixes of the pipeline's name and of their own; "" matches every name. Commands write
// the prefixes and processing threads read them without a lock, so a cycle may see one new name and one old.
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

// Whether the names select the filter, which must have a parent pipeline.
bool Matches(const FilterNames &names, const ZE_KEST_Filter_s &filter);

// A copy of both names, for reports and comparisons.
struct FilterNamesCopy {
  explicit FilterNamesCopy(const FilterNames &names)
      : pipeline(names.szPipelineName), filter(names.szFilterName) {}

  NameCopy pipeline;
  NameCopy filter;
};

}  // namespace kest
