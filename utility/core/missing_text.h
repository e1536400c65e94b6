// SPDX-License-Identifier: Apache-2.0
// Texts that may be missing.
#pragma once

namespace kest {

inline bool IsEmpty(const char *psz) {
  return psz == nullptr || *psz == '\0';
}

// How a report shows the text.
inline const char *Shown(const char *psz) {
  return psz == nullptr ? "(null)" : psz;
}

}  // namespace kest
