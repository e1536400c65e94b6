// SPDX-License-Identifier: Apache-2.0
#include "player/requests/request_names.h"

#include "player/base/relaxed.h"

namespace kest::player {

bool IsNamed(const NameField &field, const char *name) {
  if (LoadRelaxed(field[0]) == '\0') return true;
  for (const char &letter : field) {
    const char wanted = LoadRelaxed(letter);
    if (wanted != *name) return false;
    if (wanted == '\0') return true;
    ++name;
  }
  return false;
}

bool IsNamed(const NameField &pipelineField, const NameField &filterField, const ZE_KEST_Filter_s &filter) {
  return IsNamed(pipelineField, filter.pstParentPipeline->szName) && IsNamed(filterField, filter.szName);
}

}  // namespace kest::player
