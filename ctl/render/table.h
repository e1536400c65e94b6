// SPDX-License-Identifier: Apache-2.0
// Text in aligned columns.
#pragma once

#include <string>
#include <vector>

namespace kest::ctl {

class Table {
 public:
  enum class Align { kLeft, kRight };
  struct Column {
    std::string title;
    Align align = Align::kLeft;
  };

  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  // One cell for each column; control characters are shown.
  void Add(const std::vector<std::string> &cells);
  [[nodiscard]] bool IsEmpty() const { return rows_.empty(); }
  // With the titles as the first line; no line ends in blanks.
  [[nodiscard]] std::string Text() const;

 private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace kest::ctl
