// SPDX-License-Identifier: Apache-2.0
#include "debug/control/json_command.h"

#include "ze_kest/json.h"
#include "ze_kest/utility.h"

#include "utility/core/owned_memory.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kTypeNames[] = {"UNDEF", "OBJECT", "ARRAY", "STRING", "PRIMITIVE"};

void PrintToken(int s32Idx, const ZE_KEST_JsmnTokenInfo_s &stToken, const char *pszText) {
  const char *pszToken = pszText + stToken.start;
  const int s32Length = stToken.end - stToken.start;
  KEST_PRINT_AS(kDispatcher, "node: %4d, %9s, children: %5d, data:\n%.*s, \n", s32Idx,
                kTypeNames[stToken.type], stToken.size, s32Length, pszToken);
  if (stToken.type != ZE_KEST_JSMN_PRIMITIVE) return;
  const int32_t s32Value = ze_kest_Utility_StrToInt(pszToken, static_cast<uint32_t>(s32Length));
  KEST_PRINT_AS(kDispatcher, "StrToInt: %d\n", s32Value);
}

void PrintTokens(const ZE_KEST_Jsmn_s &stJsmn) {
  for (uint32_t u32Idx = 0; u32Idx < stJsmn.u32TotalTokenCounter; ++u32Idx) {
    PrintToken(static_cast<int>(u32Idx), stJsmn.pstTokenInfo[u32Idx], stJsmn.pszStringData);
  }
}

uint32_t IndexAndPrint(const char *pszText, size_t sztText) {
  ZE_KEST_Jsmn_s stJsmn;
  const uint32_t u32Create = ze_kest_Utility_Jsmn_Create(&stJsmn);
  KEST_REQUIRE_OR_AS(kDispatcher, u32Create == ZE_KEST_OK, u32Create, "Err! MALLOC failed!\n");
  stJsmn.pszStringData = pszText;
  stJsmn.sztStringDataSize = sztText;
  const uint32_t u32Fill = ze_kest_Utility_Jsmn_FillUpTokenInfo(&stJsmn);
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
  KEST_PRINT_AS(kDispatcher, "%s\n\n\n", pszText);
  return IndexAndPrint(pszText, sztText);
}

}  // namespace kest
