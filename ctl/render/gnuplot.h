// SPDX-License-Identifier: Apache-2.0
// Pictures by gnuplot, a program that is looked for when it is needed.
#pragma once

#include <string>
#include <string_view>

namespace kest::ctl {

constexpr int kPictureWidth = 1000;  // pixels

// A script's words for a text that is to be shown as it is.
std::string GnuplotText(std::string_view text);
// The beginning of a script whose picture has so many pixels in height.
std::string GnuplotStart(int height);
// What gnuplot draws, as a PNG file. The script is its standard input and the picture its standard output:
// no file is named and no shell is used. Throws CtlError when it is missing or draws nothing.
std::string Draw(const std::string &script);

}  // namespace kest::ctl
