// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace kest::player {

// The names of the rows, "A, B, C"; empty when there are none.
template <typename Rows, typename Name>
std::string ListNames(const Rows &rows, const Name &nameOf, const char *separator = ", ") {
  std::string list;
  for (const auto &row : rows) {
    list += (list.empty() ? "" : separator) + std::string(nameOf(row));
  }
  return list;
}

}  // namespace kest::player
