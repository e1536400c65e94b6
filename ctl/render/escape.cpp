// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/escape.h"

#include <fmt/format.h>

namespace kest::ctl {
namespace {

bool IsControl(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7f;
}

// Begins with a control character of two bytes, which terminals obey too: U+0080 to U+009F.
bool BeginsWithWideControl(std::string_view text) {
  return text.size() > 1 && text[0] == '\xc2' && static_cast<unsigned char>(text[1]) < 0xa0;
}

bool IsContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xc0) == 0x80;
}

// The length of the colour sequence at the beginning of the text; 0 when there is none.
size_t ColourLength(std::string_view text) {
  if (text.substr(0, 2) != "\033[") return 0;
  const size_t end = text.find_first_not_of("0123456789;", 2);
  return end != std::string_view::npos && text[end] == 'm' ? end + 1 : 0;
}

// The length of the whole UTF-8 character at the beginning of the text; 0 when there is none.
size_t CharacterLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) return 1;
  const size_t length = first >= 0xf0 && first < 0xf5 ? 4 : first >= 0xe0 ? 3 : first >= 0xc2 ? 2 : 0;
  if (length == 0 || first >= 0xf5 || text.size() < length) return 0;
  for (size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text[i])) return 0;
  }
  const auto second = static_cast<unsigned char>(text[1]);
  const bool isOverlong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
  const bool isOutside = (first == 0xed && second >= 0xa0) || (first == 0xf4 && second >= 0x90);
  return isOverlong || isOutside ? 0 : length;
}

}  // namespace

std::string Escape(std::string_view text) {
  std::string shown;
  const std::string valid = ToUtf8(text);
  for (size_t i = 0; i < valid.size(); ++i) {
    const bool isWide = BeginsWithWideControl(std::string_view(valid).substr(i));
    if (isWide) ++i;  // its second byte is its number
    if (isWide || IsControl(valid[i])) {
      shown += fmt::format("\\x{:02x}", static_cast<unsigned char>(valid[i]));
    } else {
      shown.push_back(valid[i]);
    }
  }
  return shown;
}

std::string EscapeButColours(std::string_view text) {
  std::string shown;
  size_t plainFrom = 0;
  for (size_t i = 0; i < text.size();) {
    const size_t colour = ColourLength(text.substr(i));
    if (colour == 0) {
      ++i;
      continue;
    }
    shown += Escape(text.substr(plainFrom, i - plainFrom));
    shown += text.substr(i, colour);
    i += colour;
    plainFrom = i;
  }
  return shown + Escape(text.substr(plainFrom));
}

std::string ToUtf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const size_t length = CharacterLength(text);
    valid += length == 0 ? std::string_view("\xef\xbf\xbd") : text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return valid;
}

size_t WidthOf(std::string_view text) {
  size_t width = 0;
  for (const char character : text)
    width += size_t{!IsContinuation(character)};
  return width;
}

}  // namespace kest::ctl
