// SPDX-License-Identifier: Apache-2.0
// What the commands of this room share. Each publishes a request in exported globals: whose turn it is looks
// there in every cycle, without a lock.
#pragma once

#include "debug/base/command_line.h"
#include "utility/core/shared_name.h"

namespace kest {

struct Request;

struct RequestWord {
  const char *pszWord;  // kAnyPart: whatever the part is, even empty
  // line: behind the word. ZE_KEST_OK: the line is taken. NULL: a row without a word.
  uint32_t (*pfnAction)(const Request &request, const char *pszWord, CommandLine &line);
};

constexpr const char *kAnyPart = nullptr;

// One command: KEYWORD=WORD,... The reports differ in small ways that people's scripts may rely on.
struct Request {
  const char *pszKeyword;
  const char *pszFunction;  // the reports appear under this name,
  const char *pszTag;       // begin with this
  bool bPrints;             // and come at PRINT level instead of INFO
  const char *pszPart;      // what they call the first part of the value
  const char *pszRest;      // what they call the text behind a part; NULL: this command reports less
  RequestWord aWords[3];    // tried in this order with the first part of the value
  void (*pfnOtherCommand)(const Request &request);  // what a line of another command does; NULL: nothing
  uint32_t &u32State;                               // what is requested; 0: nothing
  NameField &szPipelineName;
  NameField &szFilterName;
  uint32_t *apu32Numbers[2];  // port numbers or counts that belong to the request
};

// Splits the line, reports its parts and runs the word that it begins with. ZE_KEST_INVALID_ARGUMENT for a
// line of another command, an unknown word and a missing part.
uint32_t RunRequest(const Request &request, const char *pszLine);

// "[TAG]What=text"
void Say(const Request &request, const char *pszWhat, const char *pszText);

// Reports which word was taken, unless the command reports less.
void SayTarget(const Request &request, const char *pszWord);

// False for a missing or empty part, which keeps the previous name.
bool TakePipelineName(const Request &request, const char *pszPart);
bool TakeFilterName(const Request &request, const char *pszPart);

void ClearRequest(const Request &request);

// Word that takes the request back.
uint32_t TakeBack(const Request &request, const char *pszWord, CommandLine &line);

}  // namespace kest
