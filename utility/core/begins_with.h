// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ze_kest/utility.h"

namespace kest {

// Deliberate: commands select names by prefix, so "Decoder" also matches "Decoder_13" and "" matches
// everything.
inline bool BeginsWith(const char *pszText, const char *pszPrefix) {
  return ze_kest_Utility_Strncmp(pszText, pszPrefix, ze_kest_Utility_Strlen(pszPrefix)) == 0;
}

}  // namespace kest
