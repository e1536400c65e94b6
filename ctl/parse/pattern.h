// SPDX-License-Identifier: Apache-2.0
// Finds numbers in a text by a pattern in the style of the formats that printed them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kest::ctl {

// In the pattern, %d is a decimal number, %x a hexadecimal one, and a blank any number of blanks; the rest
// stands for itself. The text may go on behind the pattern. Empty when the text does not match.
std::optional<std::vector<int64_t>> MatchPattern(std::string_view text, std::string_view pattern);

}  // namespace kest::ctl
