// SPDX-License-Identifier: Apache-2.0
// Answers the scripts by which shells complete kestctl's words.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kest::ctl {

// words: the command line behind "kestctl". "__complete WORDS..." gives one candidate a line, its description
// after a tab. "__complete_bash LINE WORD" gives what bash puts in the place of WORD, its part of the last
// word of LINE. Empty when the words are something else.
std::optional<std::string> AnswerCompletion(const std::vector<std::string> &words);

}  // namespace kest::ctl
