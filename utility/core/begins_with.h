// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ze_kest/utility.h"

namespace kest {

// Where commands select by name they mean prefixes, on purpose: "Decoder" finds "Decoder_13", "" finds all.
inline bool BeginsWith(const char *pszText, const char *pszPrefix) {
  return ze_kest_Utility_Strncmp(pszText, pszPrefix, ze_kest_Utility_Strlen(pszPrefix)) == 0;
}

}  // namespace kest
