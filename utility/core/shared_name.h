// SPDX-License-Identifier: Apache-2.0
// Names in plain globals that other threads access without a lock: always terminated within the field, but a
// reader may see a mixture of two names.
#pragma once

#include "ze_kest/model.h"

#include "utility/core/report.h"
#include "utility/core/shared_value.h"
#include "utility/core/text_field.h"

namespace kest {

using NameField = char[ZE_KEST_NAME_SIZE];

// Cuts the name to the field. A failed copy is reported under the given function name and leaves the field
// unchanged.
inline void StoreName(const char *pszFunction, NameField &szField, const char *pszName) {
  NameField szCut;
  if (!CopyText(szCut, pszName)) {
    KEST_ERR_AS(pszFunction, "Err! Strncpy failed!\n");
    return;
  }
  for (size_t i = 0; i < ZE_KEST_NAME_SIZE; ++i)
    Store(szField[i], szCut[i]);
}

inline void ClearName(NameField &szField) {
  for (char &c : szField)
    Store(c, '\0');
}

// A snapshot of a name that stays stable while the reader uses it.
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
