// SPDX-License-Identifier: Apache-2.0
// Names in plain globals that other threads read without a lock: always terminated within the field, though
// a reader may meet a mixture of two names.
#pragma once

#include "ze_kest/model.h"

#include "utility/core/command_line.h"
#include "utility/core/report.h"
#include "utility/core/shared_value.h"
#include "utility/core/text_field.h"

namespace kest {

using NameField = char[ZE_KEST_NAME_SIZE];

// Cuts the name to the field. A failed copy is reported under the function's name and leaves the field alone.
inline void StoreName(const char *pszFunction, NameField &szField, const char *pszName) {
  NameField szCut;
  if (!CopyText(szCut, pszName)) {
    KEST_ERR_AS(pszFunction, "Err! Strncpy failed!\n");
    return;
  }
  for (size_t i = 0; i < ZE_KEST_NAME_SIZE; ++i)
    Store(szField[i], szCut[i]);
}

// The same for a part of a command line. False, and the previous name is kept, for a missing or empty part.
inline bool TakeName(const char *pszFunction, NameField &szField, const char *pszPart) {
  if (IsEmpty(pszPart)) return false;
  StoreName(pszFunction, szField, pszPart);
  return true;
}

inline void ClearName(NameField &szField) {
  for (char &c : szField)
    Store(c, '\0');
}

// A name as it stood, for as long as the reader needs it.
class NameCopy {
 public:
  explicit NameCopy(const NameField &szField) {
    for (size_t i = 0; i < ZE_KEST_NAME_SIZE - 1; ++i)
      sz_[i] = Load(szField[i]);
  }

  [[nodiscard]] const char *c_str() const { return sz_; }

 private:
  NameField sz_ = {};
};

}  // namespace kest
