// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/lines.h"

#include <algorithm>

namespace kest::ctl {
namespace {

constexpr std::string_view kPrefixMark = "]<ZE3><";
constexpr std::string_view kColourStart = "\033[";

// Where a prefix begins behind the line's first byte; npos when none does.
size_t FindInnerPrefix(std::string_view line) {
  const size_t mark = line.find(kPrefixMark);
  if (mark == std::string_view::npos) return mark;
  const size_t start = line.rfind(kColourStart, mark);
  return start == 0 ? std::string_view::npos : start;
}

// The length of the escape sequence at the beginning of the text; 0 when it is none of a colour.
size_t ColourLength(std::string_view text) {
  if (!BeginsWith(text, kColourStart)) return 0;
  const size_t end = text.find_first_not_of("0123456789;", kColourStart.size());
  return end != std::string_view::npos && text[end] == 'm' ? end + 1 : 0;
}

}  // namespace

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);  // from an old remote shell
    lines.emplace_back(line);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

std::vector<std::string> SplitLogLines(std::string_view text) {
  std::vector<std::string> lines;
  for (std::string &line : SplitLines(text)) {
    const size_t prefix = FindInnerPrefix(line);
    if (prefix != std::string::npos) lines.push_back(line.substr(0, prefix));
    lines.push_back(prefix == std::string::npos ? std::move(line) : line.substr(prefix));
  }
  return lines;
}

bool IsOfInstrument(std::string_view line) {
  constexpr std::string_view kBeginnings[] = {"[pcm  level]", "[meta level]", "[raw  level]", "[latency]",
                                              "wrong bit "};
  return std::any_of(std::begin(kBeginnings), std::end(kBeginnings),
                     [&](std::string_view beginning) { return BeginsWith(line, beginning); });
}

std::string WithoutColours(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  while (!text.empty()) {
    const size_t escape = ColourLength(text);
    if (escape == 0) plain.push_back(text.front());
    text.remove_prefix(std::max(escape, size_t{1}));
  }
  return plain;
}

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

bool BeginsWith(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

}  // namespace kest::ctl
