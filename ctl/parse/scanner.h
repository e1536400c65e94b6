// SPDX-License-Identifier: Apache-2.0
// Reads a line from left to right. A step that does not match leaves the scanner where it is.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>

namespace kest::ctl {

class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  [[nodiscard]] std::string_view Rest() const { return rest_; }
  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

  bool Text(std::string_view text) {
    if (rest_.substr(0, text.size()) != text) return false;
    rest_.remove_prefix(text.size());
    return true;
  }

  void Blanks() {
    while (!rest_.empty() && rest_.front() == ' ')
      rest_.remove_prefix(1);
  }

  // A number that fits; the value stays as it is when there is none.
  template <typename Value>
  bool Number(Value &value, int base = 10) {
    Value read{};
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), read, base);
    if (error != std::errc{}) return false;
    rest_.remove_prefix(static_cast<size_t>(end - rest_.data()));
    value = read;
    return true;
  }

  // Everything before the mark, which is passed too.
  std::optional<std::string_view> UpTo(std::string_view mark) {
    const size_t end = rest_.find(mark);
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view before = rest_.substr(0, end);
    rest_.remove_prefix(end + mark.size());
    return before;
  }

 private:
  std::string_view rest_;
};

}  // namespace kest::ctl
