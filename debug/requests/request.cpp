// SPDX-License-Identifier: Apache-2.0
#include "debug/requests/request.h"

#include "utility/core/missing_text.h"
#include "utility/core/report.h"

namespace kest {
namespace {

void SayParts(const Request &request, const char *pszPart, const char *pszRest) {
  if (request.pszRest == nullptr) return;
  if (request.bPrints) {
    KEST_PRINT_AS(request.pszFunction, "%s%s=%s,%s=%s\n", request.pszTag, request.pszRest, Shown(pszRest),
                  request.pszPart, pszPart);
  } else {
    // Deliberate: without the tag.
    KEST_INFO_AS(request.pszFunction, "%s=%s,%s=%s\n", request.pszRest, Shown(pszRest), request.pszPart,
                 pszPart);
  }
}

uint32_t RunWord(const Request &request, CommandLine &line) {
  const char *pszPart = line.Next(",");
  if (pszPart == nullptr) {
    KEST_ERR_AS(request.pszFunction, "%s is NULL, format error\n", request.pszPart);
    return ZE_KEST_INVALID_ARGUMENT;
  }
  SayParts(request, pszPart, line.Rest());
  Say(request, "Cmd", pszPart);
  for (const RequestWord &word : request.aWords) {
    if (word.pfnAction == nullptr) continue;
    if (word.pszWord != kAnyPart && ze_kest_Utility_Strcmp(pszPart, word.pszWord) != 0) continue;
    return word.pfnAction(request, pszPart, line);
  }
  return ZE_KEST_INVALID_ARGUMENT;
}

bool TakeName(const Request &request, const char *pszWhat, NameField &szField, const char *pszPart) {
  if (IsEmpty(pszPart)) return false;
  StoreName(request.pszFunction, szField, pszPart);
  Say(request, pszWhat, NameCopy(szField).c_str());
  return true;
}

}  // namespace

uint32_t RunRequest(const Request &request, const char *pszLine) {
  CommandLine line(pszLine);
  KEST_INFO_AS(request.pszFunction, "pszLine=%s\n", Shown(pszLine));
  const char *pszSub = line.Next("=");
  KEST_REQUIRE_AS(request.pszFunction, pszSub != nullptr, "pszSub is NULL, format error\n");
  if (request.pszRest != nullptr) {
    KEST_INFO_AS(request.pszFunction, "%s=%s,pszSub=%s\n", request.pszRest, Shown(line.Rest()), pszSub);
  }
  if (ze_kest_Utility_Strcmp(pszSub, request.pszKeyword) == 0) return RunWord(request, line);
  if (request.pfnOtherCommand != nullptr) request.pfnOtherCommand(request);
  return ZE_KEST_INVALID_ARGUMENT;
}

void Say(const Request &request, const char *pszWhat, const char *pszText) {
  if (request.bPrints) {
    KEST_PRINT_AS(request.pszFunction, "%s%s=%s\n", request.pszTag, pszWhat, pszText);
  } else {
    KEST_INFO_AS(request.pszFunction, "%s%s=%s\n", request.pszTag, pszWhat, pszText);
  }
}

void SayTarget(const Request &request, const char *pszWord) {
  if (request.pszRest != nullptr) Say(request, "Target", pszWord);
}

bool TakePipelineName(const Request &request, const char *pszPart) {
  return TakeName(request, "Pipeline Name", request.szPipelineName, pszPart);
}

bool TakeFilterName(const Request &request, const char *pszPart) {
  return TakeName(request, "Filter Name", request.szFilterName, pszPart);
}

void ClearRequest(const Request &request) {
  Store(request.u32State, uint32_t{0});
  ClearName(request.szPipelineName);
  ClearName(request.szFilterName);
  for (uint32_t *pu32Number : request.apu32Numbers) {
    if (pu32Number != nullptr) Store(*pu32Number, uint32_t{0});
  }
}

uint32_t TakeBack(const Request &request, const char *pszWord, CommandLine & /*line*/) {
  SayTarget(request, pszWord);
  ClearRequest(request);
  return ZE_KEST_OK;
}

}  // namespace kest
