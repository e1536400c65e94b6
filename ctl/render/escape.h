// SPDX-License-Identifier: Apache-2.0
// Names and texts come from other processes: on a terminal their control characters are shown, not obeyed.
#pragma once

#include <string>
#include <string_view>

namespace kest::ctl {

// Control characters as \xNN.
std::string Escape(std::string_view text);
// The same, but colours stay.
std::string EscapeButColours(std::string_view text);
// Valid UTF-8, as JSON wants it: other bytes become U+FFFD.
std::string ToUtf8(std::string_view text);
// Columns that the text takes on a terminal, roughly: one for each code point.
size_t WidthOf(std::string_view text);

}  // namespace kest::ctl
