// SPDX-License-Identifier: Apache-2.0
#include "ctl/terminal/words.h"

#include <cctype>

namespace kest::ctl {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kEscapedInDoubleQuotes = "\\\"$`";
constexpr std::string_view kPlainMarks = "_-./,:=+@%";

bool IsIn(std::string_view characters, char character) {
  return characters.find(character) != std::string_view::npos;
}

bool IsPlain(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return std::isalnum(byte) != 0 || byte >= 0x80 || IsIn(kPlainMarks, character);
}

class Splitter {
 public:
  explicit Splitter(std::string_view line) : line_(line) {}

  std::vector<Word> Split() {
    std::vector<Word> words;
    while (true) {
      while (at_ < line_.size() && IsIn(kBlanks, line_[at_]))
        ++at_;
      if (at_ == line_.size()) return words;
      words.push_back(TakeWord());
    }
  }

 private:
  Word TakeWord() {
    Word word;
    word.begin = at_;
    for (; at_ < line_.size() && (word.openQuote != 0 || !IsIn(kBlanks, line_[at_])); ++at_)
      TakeCharacter(word);
    word.end = at_;
    return word;
  }

  void TakeCharacter(Word &word) {
    const char character = line_[at_];
    if (character == word.openQuote) {
      word.openQuote = 0;
    } else if (IsEscape(word.openQuote)) {
      if (++at_ < line_.size())
        word.text.push_back(line_[at_]);
      else
        --at_;
    } else if (word.openQuote == 0 && IsIn("'\"", character)) {
      word.openQuote = character;
    } else {
      word.text.push_back(character);
    }
  }

  [[nodiscard]] bool IsEscape(char openQuote) const {
    if (line_[at_] != '\\' || openQuote == '\'') return false;
    if (openQuote == 0) return true;
    return at_ + 1 < line_.size() && IsIn(kEscapedInDoubleQuotes, line_[at_ + 1]);
  }

  std::string_view line_;
  size_t at_ = 0;
};

}  // namespace

std::vector<Word> SplitWords(std::string_view line) {
  return Splitter(line).Split();
}

std::vector<Word> SplitUnfinished(std::string_view line) {
  std::vector<Word> words = SplitWords(line);
  if (words.empty() || words.back().end != line.size()) words.push_back({"", line.size(), line.size()});
  return words;
}

std::vector<std::string> TextsOf(const std::vector<Word> &words) {
  std::vector<std::string> texts;
  texts.reserve(words.size());
  for (const Word &word : words)
    texts.push_back(word.text);
  return texts;
}

std::string Quote(std::string_view text, char openQuote) {
  std::string quoted;
  for (const char character : text) {
    if (openQuote == '\'') {
      quoted += character == '\'' ? "'\\''" : std::string(1, character);
      continue;
    }
    const bool isEscaped = openQuote == 0 ? !IsPlain(character) : IsIn(kEscapedInDoubleQuotes, character);
    if (isEscaped) quoted.push_back('\\');
    quoted.push_back(character);
  }
  return quoted;
}

}  // namespace kest::ctl
