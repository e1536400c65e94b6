// SPDX-License-Identifier: Apache-2.0
// The rows of a static array, or none.
#pragma once

#include <cstddef>

namespace kest::player {

template <typename Row>
class Table {
 public:
  constexpr Table() = default;
  template <size_t kSize>
  constexpr Table(const Row (&rows)[kSize]) : begin_(rows), end_(rows + kSize) {}

  [[nodiscard]] constexpr const Row *begin() const { return begin_; }
  [[nodiscard]] constexpr const Row *end() const { return end_; }

 private:
  const Row *begin_ = nullptr;
  const Row *end_ = nullptr;
};

}  // namespace kest::player
