// SPDX-License-Identifier: Apache-2.0
// Tables on a narrow terminal.
#pragma once

#include <string>
#include <string_view>

namespace kest::ctl {

// Breaks lines that are wider than the terminal at blanks; what is broken off goes below the line's last
// column, which begins behind two blanks. A line without a fitting blank stays as it is, as does every line
// when the width is 0. Colours take no room.
std::string FitTo(size_t width, std::string_view text);

}  // namespace kest::ctl
