// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/pattern.h"

#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

bool TakeNumber(Scanner &scanner, int base, std::vector<int64_t> &numbers) {
  int64_t number = 0;
  uint64_t large = 0;
  if (scanner.Number(number, base)) {
    numbers.push_back(number);
  } else if (scanner.Number(large, base)) {
    numbers.push_back(static_cast<int64_t>(large));
  } else {
    return false;
  }
  return true;
}

}  // namespace

std::optional<std::vector<int64_t>> MatchPattern(std::string_view text, std::string_view pattern) {
  Scanner scanner(text);
  std::vector<int64_t> numbers;
  for (size_t i = 0; i < pattern.size(); ++i) {
    bool matches = true;
    if (pattern[i] == ' ') {
      scanner.Blanks();
    } else if (pattern[i] == '%' && i + 1 < pattern.size()) {
      matches = TakeNumber(scanner, pattern[++i] == 'x' ? 16 : 10, numbers);
    } else {
      matches = scanner.Text(pattern.substr(i, 1));
    }
    if (!matches) return std::nullopt;
  }
  return numbers;
}

}  // namespace kest::ctl
