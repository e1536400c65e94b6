// SPDX-License-Identifier: Apache-2.0
// The text of an error number, valid for as long as the object: typically for one report.
#pragma once

#include "utility/core/platform.h"

namespace kest {

class ErrorText {
 public:
  explicit ErrorText(int s32Error) : psz_(ErrorTextInto(s32Error, szBuf_, sizeof(szBuf_))) {}
  ErrorText(const ErrorText &) = delete;
  ErrorText &operator=(const ErrorText &) = delete;

  [[nodiscard]] const char *c_str() const { return psz_; }

 private:
  char szBuf_[128] = {};
  const char *psz_;
};

}  // namespace kest
