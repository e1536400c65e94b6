// SPDX-License-Identifier: Apache-2.0
// One row for each form of a command: KEYWORD=VALUE, KEYWORD alone, or KEYWORD with a text of its own.
#pragma once

#include <cstddef>
#include <cstdint>

#include "debug/base/command_line.h"

namespace kest {

// The sets of characters that end the keyword and the value of a line.
struct Split {
  const char *pszKeywordEnd;
  const char *pszValueEnd;
};

// What a command gets from its line.
struct CommandArguments {
  const char *pszValue;  // never empty; NULL for a row with kNoValue
  CommandLine &rest;     // what follows on the line
  uint32_t u32Constant;  // from the row
};

struct Command {
  const char *pszKeyword;       // kEveryLine: the action gets the whole line and splits it itself
  const char *pszValue;         // the only value that matches, or kAnyValue or kNoValue
  const Split *pstSplit;        // NULL: the keyword's handler splits it off, and all behind it is the value
  const char *pszConfirmation;  // printed before the action; NULL for none
  uint32_t (*pfnAction)(const CommandArguments &arguments);  // ZE_KEST_OK: it took the line
  uint32_t u32Constant = 0;                                  // for actions that serve several rows
};

constexpr const char *kEveryLine = nullptr;
constexpr const char *kAnyValue = nullptr;  // any but an empty one
constexpr const char *kNoValue = "";  // none is split off: what follows the keyword, if anything, is left

// Rows in the order in which they are tried.
class CommandTable {
 public:
  template <size_t kCount>
  constexpr explicit CommandTable(const Command (&aCommands)[kCount])
      : pstFirst_(aCommands), pstEnd_(aCommands + kCount) {}

  [[nodiscard]] const Command *begin() const { return pstFirst_; }
  [[nodiscard]] const Command *end() const { return pstEnd_; }

 private:
  const Command *pstFirst_;
  const Command *pstEnd_;
};

// The keyword has been split off the lines that these three get.

// Whether the line is one for the row.
bool IsFor(const Command &command, const char *pszKeyword, const CommandLine &line);

// Splits the value off such a line, confirms under the function's name and runs the action.
uint32_t Run(const Command &command, const char *pszFunction, CommandLine &line);

// Runs the first row that the line is for. ZE_KEST_INVALID_ARGUMENT when there is none; the line is then as
// it was.
uint32_t RunFirst(const CommandTable &commands, const char *pszFunction, const char *pszKeyword,
                  CommandLine &line);

// For a row whose value need not be known: takes the line and does nothing.
uint32_t TakeAnyway(const CommandArguments &arguments);

}  // namespace kest
