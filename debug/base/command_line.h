// SPDX-License-Identifier: Apache-2.0
// Splits a command line from the front.
#pragma once

#include "utility/core/missing_text.h"
#include "utility/core/owned_memory.h"

namespace kest {

class CommandLine {
 public:
  explicit CommandLine(const char *pszLine) : copy_(Duplicate(pszLine)), pszRest_(copy_.get()) {}

  // The text up to the next separator, or the whole rest when there is no separator; then nothing is left,
  // whereas a separator at the very end leaves "". NULL when nothing was left, or when there was no memory
  // for the copy.
  const char *Next(const char *pszSeparator) { return ze_kest_Utility_Strsep(&pszRest_, pszSeparator); }

  // The text after the last separator consumed; NULL when nothing is left.
  [[nodiscard]] char *Rest() const { return pszRest_; }

 private:
  Owned<char> copy_;
  char *pszRest_;
};

}  // namespace kest
