// SPDX-License-Identifier: Apache-2.0
#include "ctl/terminal/completion_request.h"

#include <algorithm>

#include <fmt/format.h>

#include "ctl/render/escape.h"
#include "ctl/terminal/completer.h"
#include "ctl/terminal/words.h"

namespace kest::ctl {
namespace {

std::vector<Candidate> CandidatesFor(const std::vector<std::string> &words) {
  return Completer(Settings()).Complete(words);
}

std::string AnswerWords(const std::vector<std::string> &words) {
  std::string answer;
  for (const Candidate &candidate : CandidatesFor(words))
    answer += fmt::format("{}\t{}\n", candidate.text, Escape(candidate.description));
  return answer;
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// bash ends words at = and : too, and keeps what stands before its own word.
std::string AnswerBash(const std::string &line, const std::string &bashWord) {
  const std::vector<Word> words = SplitUnfinished(line);
  const Word &last = words.back();
  std::string_view kept = std::string_view(line).substr(last.begin);
  if (EndsWith(kept, bashWord)) kept.remove_suffix(bashWord.size());
  const std::vector<Word> keptWords = SplitWords(kept);
  const size_t keptBytes = keptWords.empty() ? 0 : keptWords[0].text.size();
  std::vector<std::string> texts = TextsOf(words);
  texts.erase(texts.begin());
  std::string answer;
  for (const Candidate &candidate : CandidatesFor(texts))
    answer += Quote(candidate.text.substr(keptBytes), last.openQuote) + "\n";
  return answer;
}

}  // namespace

std::optional<std::string> AnswerCompletion(const std::vector<std::string> &words) {
  if (words.empty()) return std::nullopt;
  if (words[0] == "__complete") return AnswerWords({words.begin() + 1, words.end()});
  if (words[0] == "__complete_bash" && words.size() == 3) return AnswerBash(words[1], words[2]);
  return std::nullopt;
}

}  // namespace kest::ctl
