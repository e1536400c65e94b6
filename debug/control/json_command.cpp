// SPDX-License-Identifier: Apache-2.0
#include "debug/control/json_command.h"

#include "ze_kest/json.h"
#include "ze_kest/utility.h"

#include "debug/base/started.h"
#include "debug/log/log_file.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"
#include "utility/json/tokenizer.h"

namespace kest {
namespace {

constexpr const char *kTypeNames[] = {"UNDEF", "OBJECT", "ARRAY", "STRING", "PRIMITIVE"};

// The text of an array or object is printed again with everything around it. Configuration files stay far
// below these limits.
constexpr size_t kMaxText = size_t{1024} * 1024;
constexpr size_t kMaxDepth = 64;
constexpr size_t kLongText = 4096;

// The log looks at its size now and then, for lines of the usual length.
void LimitLogFileAfter(size_t sztPrinted) {
  if (sztPrinted >= kLongText) LimitLogFile();
}

// Reported. Works on an index that is still being filled, too: an open token has the end -1.
bool IsTooDeep(const ZE_KEST_Jsmn_s &stJsmn) {
  int32_t as32Ends[kMaxDepth];
  size_t sztDepth = 0;
  for (uint32_t u32Idx = 0; u32Idx < stJsmn.toknext; ++u32Idx) {
    const ZE_KEST_JsmnTokenInfo_s &stToken = stJsmn.pstTokenInfo[u32Idx];
    while (sztDepth != 0 && as32Ends[sztDepth - 1] != -1 && stToken.start >= as32Ends[sztDepth - 1])
      --sztDepth;
    if (stToken.type != ZE_KEST_JSMN_OBJECT && stToken.type != ZE_KEST_JSMN_ARRAY) continue;
    if (sztDepth == kMaxDepth) {
      KEST_ERR_AS(kDispatcher, "Err! The tokens are nested deeper than %zu levels\n", kMaxDepth);
      return true;
    }
    as32Ends[sztDepth++] = stToken.end;
  }
  return false;
}

bool IsToGiveUpIndex(const ZE_KEST_Jsmn_s &stJsmn) {
  return IsEnding() || IsTooDeep(stJsmn);
}

void PrintToken(int s32Idx, const ZE_KEST_JsmnTokenInfo_s &stToken, const char *pszText) {
  const char *pszToken = pszText + stToken.start;
  const int s32Length = stToken.end - stToken.start;
  KEST_PRINT_AS(kDispatcher, "node: %4d, %9s, children: %5d, data:\n%.*s, \n", s32Idx,
                kTypeNames[stToken.type], stToken.size, s32Length, pszToken);
  LimitLogFileAfter(static_cast<size_t>(s32Length));
  if (stToken.type != ZE_KEST_JSMN_PRIMITIVE) return;
  const int32_t s32Value = ze_kest_Utility_StrToInt(pszToken, static_cast<uint32_t>(s32Length));
  KEST_PRINT_AS(kDispatcher, "StrToInt: %d\n", s32Value);
}

void PrintTokens(const ZE_KEST_Jsmn_s &stJsmn) {
  for (uint32_t u32Idx = 0; u32Idx < stJsmn.u32TotalTokenCounter && !IsEnding(); ++u32Idx) {
    PrintToken(static_cast<int>(u32Idx), stJsmn.pstTokenInfo[u32Idx], stJsmn.pszStringData);
  }
}

uint32_t FillUp(ZE_KEST_Jsmn_s &stJsmn) {
  const uint32_t u32Fill = FillUpTokenInfo(&stJsmn, IsToGiveUpIndex);
  if (u32Fill != ZE_KEST_OK) return u32Fill;
  return IsTooDeep(stJsmn) ? ZE_KEST_FAILED : ZE_KEST_OK;
}

uint32_t IndexAndPrint(const char *pszText, size_t sztText) {
  ZE_KEST_Jsmn_s stJsmn;
  const uint32_t u32Create = ze_kest_Utility_Jsmn_Create(&stJsmn);
  KEST_REQUIRE_OR_AS(kDispatcher, u32Create == ZE_KEST_OK, u32Create, "Err! MALLOC failed!\n");
  stJsmn.pszStringData = pszText;
  stJsmn.sztStringDataSize = sztText;
  const uint32_t u32Fill = FillUp(stJsmn);
  if (u32Fill == ZE_KEST_OK) {
    PrintTokens(stJsmn);
  } else {
    KEST_ERR_AS(kDispatcher, "Failed to parse pszJson for tok malloc issue.\n");
  }
  // For invalid JSON the reader has already freed the token array.
  if (stJsmn.pstTokenInfo != nullptr) ze_kest_Utility_Jsmn_Destroy(&stJsmn);
  return u32Fill;
}

}  // namespace

uint32_t PrintJsonFile(const CommandArguments &arguments) {
  char *pszText = nullptr;
  size_t sztText = 0;
  const uint32_t u32Read = ze_kest_Utility_FileToString(arguments.pszValue, &pszText, &sztText);
  KEST_REQUIRE_OR_AS(kDispatcher, u32Read == ZE_KEST_OK, u32Read, "Err! FileToString failed!\n");
  const Owned<char> text(pszText);
  if (sztText > kMaxText) {
    KEST_ERR_AS(kDispatcher, "Err! %s has more than %zu bytes\n", arguments.pszValue, kMaxText);
    return ZE_KEST_FAILED;
  }
  KEST_PRINT_AS(kDispatcher, "%s\n\n\n", pszText);
  LimitLogFileAfter(sztText);
  return IndexAndPrint(pszText, sztText);
}

}  // namespace kest
