// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "utility/core/report.h"

namespace kest {

// A formatted file name, cut at 255 characters. Names of filters may hold "/", which would lead out of the
// debug directory: the file name has "_" in its place.
class FileName {
 public:
  // A failure is reported under the function's name and leaves the name empty.
  __attribute__((format(printf, 3, 4))) FileName(const char *pszFunction, const char *pszFormat, ...) {
    va_list arguments;
    va_start(arguments, pszFormat);
    const bool bFormatted = vsnprintf(sz_, sizeof(sz_), pszFormat, arguments) >= 0;
    va_end(arguments);
    if (bFormatted) {
      std::replace(sz_, sz_ + strlen(sz_), '/', '_');
      return;
    }
    sz_[0] = '\0';
    KEST_ERR_AS(pszFunction, "Error! Fail to snprintf()!\n");
  }

  [[nodiscard]] const char *c_str() const { return sz_; }

 private:
  char sz_[256];
};

}  // namespace kest
