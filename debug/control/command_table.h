// SPDX-License-Identifier: Apache-2.0
// The commands that the dispatcher executes itself.
#pragma once

#include <cstdint>

namespace kest {

// The sets of characters that end the keyword and the value of a line.
struct Split {
  const char *pszKeywordEnd;
  const char *pszValueEnd;
};

// What a command gets from its line.
struct CommandArguments {
  char *pszValue;        // never empty for a command that takes a value
  char *pszRest;         // the text after the value; NULL when there is none
  uint32_t u32Constant;  // from the command's row
};

struct Command {
  const char *pszKeyword;  // kEveryLine: the action gets the whole line as pszRest and splits it itself
  const char *pszValue;    // the only value that matches, or kAnyValue or kNoValue
  const Split *pstSplit;
  const char *pszConfirmation;                               // printed before the action; NULL for none
  uint32_t (*pfnAction)(const CommandArguments &arguments);  // ZE_KEST_OK: it took the line
  uint32_t u32Constant;
};

// Reports of these commands appear under the dispatcher's name.
constexpr const char *kDispatcher = "_ZE_KEST_Debug_SetParameter";

constexpr const char *kEveryLine = nullptr;
constexpr const char *kAnyValue = nullptr;
constexpr const char *kNoValue = "";

struct CommandTable {
  const Command *pstFirst;
  const Command *pstEnd;

  [[nodiscard]] const Command *begin() const { return pstFirst; }
  [[nodiscard]] const Command *end() const { return pstEnd; }
};

// In the order in which they are tried.
CommandTable Commands();

}  // namespace kest
