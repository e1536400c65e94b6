// SPDX-License-Identifier: Apache-2.0
// The filter record that the library sees, with a pointer back to its filter.
#pragma once

#include "ze_kest/model.h"

namespace kest::player {

class Filter;

struct FilterRecord : ZE_KEST_Filter_s {
  Filter *filter;
};

// The filter whose record the library hands back.
inline Filter &FilterOf(ZE_KEST_Filter_s &record) {
  return *static_cast<FilterRecord &>(record).filter;
}

}  // namespace kest::player
