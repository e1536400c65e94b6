// SPDX-License-Identifier: Apache-2.0
// The commands that the dispatcher carries out itself.
#pragma once

#include <cstdint>

namespace kest {

// How a line is split: the keyword ends at one of the first set, the value at one of the second.
struct Split {
  const char *pszKeywordEnd;
  const char *pszValueEnd;
};

// What a line gave a command.
struct CommandArguments {
  char *pszValue;        // never empty where a command takes a value
  char *pszRest;         // what follows the value; NULL when nothing does
  uint32_t u32Constant;  // of the command's row
};

struct Command {
  const char *pszKeyword;  // kEveryLine: the action gets the whole line as its rest and splits it itself
  const char *pszValue;    // the value itself, kAnyValue or kNoValue
  const Split *pstSplit;
  const char *pszConfirmation;                               // printed before the action; NULL for none
  uint32_t (*pfnAction)(const CommandArguments &arguments);  // ZE_KEST_OK: the line is taken
  uint32_t u32Constant;
};

// Reports of the commands carry the dispatcher's name.
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
