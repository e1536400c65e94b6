// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/table.h"

#include <algorithm>

#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

constexpr const char *kGap = "  ";

std::string Padded(const std::string &cell, size_t width, Table::Align align) {
  const std::string padding(width - std::min(width, WidthOf(cell)), ' ');
  return align == Table::Align::kLeft ? cell + padding : padding + cell;
}

void TrimEnd(std::string &line) {
  line.erase(line.find_last_not_of(' ') + 1);
}

}  // namespace

void Table::Add(const std::vector<std::string> &cells) {
  std::vector<std::string> row(columns_.size());
  for (size_t i = 0; i < cells.size() && i < row.size(); ++i)
    row[i] = Escape(cells[i]);
  rows_.push_back(std::move(row));
}

std::string Table::Text() const {
  std::vector<size_t> widths;
  std::vector<std::string> titles;
  for (const Column &column : columns_) {
    titles.push_back(column.title);
    widths.push_back(WidthOf(column.title));
  }
  for (const auto &row : rows_) {
    for (size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], WidthOf(row[i]));
  }
  const auto lineOf = [&](const std::vector<std::string> &row) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i)
      line += (i == 0 ? "" : kGap) + Padded(row[i], widths[i], columns_[i].align);
    TrimEnd(line);
    return line + "\n";
  };
  std::string text = lineOf(titles);
  for (const auto &row : rows_)
    text += lineOf(row);
  return text;
}

}  // namespace kest::ctl
