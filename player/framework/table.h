// SPDX-License-Identifier: Apache-2.0
// Rows that lie in an array elsewhere, or none.
#pragma once

#include <cstddef>
#include <vector>

namespace kest::player {

template <typename Row>
class Table {
 public:
  constexpr Table() = default;
  template <size_t kSize>
  constexpr Table(const Row (&rows)[kSize]) : begin_(rows), end_(rows + kSize) {}
  // Valid until the vector changes.
  Table(const std::vector<Row> &rows) : begin_(rows.data()), end_(rows.data() + rows.size()) {}

  [[nodiscard]] constexpr const Row *begin() const { return begin_; }
  [[nodiscard]] constexpr const Row *end() const { return end_; }

 private:
  const Row *begin_ = nullptr;
  const Row *end_ = nullptr;
};

}  // namespace kest::player
