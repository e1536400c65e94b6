// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/fit.h"

#include <algorithm>

#include "ctl/parse/lines.h"
#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

constexpr std::string_view kGap = "  ";
constexpr size_t kLeastColumn = 20;  // a narrower one would be harder to read than broken lines

size_t VisibleWidth(std::string_view text) {
  return WidthOf(WithoutColours(text));
}

// Where the last column begins.
size_t LastColumn(std::string_view line) {
  const size_t gap = line.rfind(kGap);
  return gap == std::string_view::npos ? 0 : gap + kGap.size();
}

// The last blank behind which the line is too wide; npos when there is none behind the column's begin.
size_t BreakIn(std::string_view line, size_t column, size_t width) {
  size_t at = line.rfind(' ');
  while (at != std::string_view::npos && at > column && VisibleWidth(line.substr(0, at)) > width)
    at = line.rfind(' ', at - 1);
  return at != std::string_view::npos && at > column ? at : std::string_view::npos;
}

std::string FitLine(size_t width, std::string line) {
  const size_t column = LastColumn(line);
  const size_t indent = VisibleWidth(line.substr(0, column));
  std::string fitted;
  while (indent + kLeastColumn <= width && VisibleWidth(line) > width) {
    const size_t begin = fitted.empty() ? column : indent;
    const size_t at = BreakIn(line, begin, width);
    if (at == std::string::npos) break;
    fitted += line.substr(0, at) + "\n";
    line = std::string(indent, ' ') + line.substr(at + 1);
  }
  return fitted + line + "\n";
}

}  // namespace

std::string FitTo(size_t width, std::string_view text) {
  if (width == 0) return std::string(text);
  std::string fitted;
  for (std::string &line : SplitLines(text))
    fitted += FitLine(width, std::move(line));
  return fitted;
}

}  // namespace kest::ctl
