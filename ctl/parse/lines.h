// SPDX-License-Identifier: Apache-2.0
// Takes the text of the log apart into lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kest::ctl {

// The lines of a text without their ends. A last line without an end counts.
std::vector<std::string> SplitLines(std::string_view text);
// The same for a part of the log: where a prefix begins in the middle of a line, because another thread
// logged while that line was being put together, a new line begins.
std::vector<std::string> SplitLogLines(std::string_view text);
// Whether an instrument of the data path prints such lines, from an audio thread at any time.
bool IsOfInstrument(std::string_view line);
std::string WithoutColours(std::string_view text);
std::string_view Trim(std::string_view text);
bool BeginsWith(std::string_view text, std::string_view beginning);
bool Contains(std::string_view text, std::string_view part);

}  // namespace kest::ctl
