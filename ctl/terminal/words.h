// SPDX-License-Identifier: Apache-2.0
// The words of a line that is being typed. Quotes and backslashes mean what they mean to a shell; nothing is
// expanded.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kest::ctl {

struct Word {
  std::string text;    // without quotes and backslashes
  size_t begin = 0;    // in the line
  size_t end = 0;      // behind its last byte in the line
  char openQuote = 0;  // the quote that the line does not close; 0 when there is none
};

std::vector<Word> SplitWords(std::string_view line);
// The same with the word at which the cursor stands as the last one, which may be empty.
std::vector<Word> SplitUnfinished(std::string_view line);
std::vector<std::string> TextsOf(const std::vector<Word> &words);
// The text as it is typed so that it stays one word. openQuote: the quote that stands before it.
std::string Quote(std::string_view text, char openQuote = 0);

}  // namespace kest::ctl
