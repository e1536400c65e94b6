// SPDX-License-Identifier: Apache-2.0
// A command line, taken apart from its front.
#pragma once

#include "utility/core/owned_memory.h"

namespace kest {

inline bool IsEmpty(const char *psz) {
  return psz == nullptr || *psz == '\0';
}

// For printing: a part that is missing reads like this in a report.
inline const char *Shown(const char *psz) {
  return psz == nullptr ? "(null)" : psz;
}

class CommandLine {
 public:
  explicit CommandLine(const char *pszLine) : copy_(Duplicate(pszLine)), pszRest_(copy_.get()) {}

  // What stands before the next separator, or all that is left where there is none: then nothing is left,
  // while a separator at the very end leaves "". NULL when nothing was left, or without memory for the copy.
  const char *Next(const char *pszSeparator) { return ze_kest_Utility_Strsep(&pszRest_, pszSeparator); }

  // What stands behind the separators so far; NULL when nothing is left.
  [[nodiscard]] const char *Rest() const { return pszRest_; }

 private:
  Owned<char> copy_;
  char *pszRest_;
};

}  // namespace kest
