// SPDX-License-Identifier: Apache-2.0
// The fixed channel numbering over the groups, beside the exported tables.
#pragma once

#include "ze_kest/utility.h"

namespace kest {

// One past the last global channel of each group.
inline constexpr uint32_t kPcmGroupEndChIdx[ZE_KEST_PCM_GROUPS] = {2, 12, 22};

// The group of a global channel; ZE_KEST_PCM_GROUPS for one beyond the last group.
inline uint32_t GroupOf(uint32_t u32Channel) {
  uint32_t u32Group = 0;
  while (u32Group < ZE_KEST_PCM_GROUPS && u32Channel >= kPcmGroupEndChIdx[u32Group])
    ++u32Group;
  return u32Group;
}

}  // namespace kest
