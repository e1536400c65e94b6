// SPDX-License-Identifier: Apache-2.0
// Texts in fixed-size fields.
#pragma once

#include <cstddef>

#include "ze_kest/utility.h"

namespace kest {

// Cuts the text to the field and always terminates it. Returns false for NULL and leaves the field unchanged.
template <size_t kSize>
[[nodiscard]] bool CopyText(char (&szField)[kSize], const char *pszText) {
  if (ze_kest_Utility_Strncpy(szField, pszText, kSize - 1) == nullptr) return false;
  szField[kSize - 1] = '\0';
  return true;
}

}  // namespace kest
