// SPDX-License-Identifier: Apache-2.0
// Look-ups in the index of a JSON text.
#include <cstring>

#include "ze_kest/json.h"
#include "ze_kest/utility.h"

#include "utility/core/report.h"
#include "utility/json/context_check.h"

namespace {

using Token = ZE_KEST_JsmnTokenInfo_s;

uint32_t Length(const Token &stToken) {
  return static_cast<uint32_t>(stToken.end - stToken.start);
}

// The index of a token; u32TotalTokenCounter if the pointer is not to a token of the array.
uint32_t IndexOf(const ZE_KEST_Jsmn_s &stJsmn, const Token *pstToken) {
  const uintptr_t uOffset =
      reinterpret_cast<uintptr_t>(pstToken) - reinterpret_cast<uintptr_t>(stJsmn.pstTokenInfo);
  const uintptr_t uIdx = uOffset / sizeof(Token);
  const bool bInside = uOffset % sizeof(Token) == 0 && uIdx < stJsmn.u32TotalTokenCounter;
  return bInside ? static_cast<uint32_t>(uIdx) : stJsmn.u32TotalTokenCounter;
}

// The first string token at or after an index for which fits returns true; NULL if there is none.
template <typename Fits>
Token *FindString(const ZE_KEST_Jsmn_s &stJsmn, uint32_t u32FirstIdx, const Fits &fits) {
  for (uint32_t u32Idx = u32FirstIdx; u32Idx < stJsmn.u32TotalTokenCounter; ++u32Idx) {
    Token &stToken = stJsmn.pstTokenInfo[u32Idx];
    if (stToken.type == ZE_KEST_JSMN_STRING && fits(stToken)) return &stToken;
  }
  return nullptr;
}

// Matches keys and values alike.
Token *FindName(const ZE_KEST_Jsmn_s &stJsmn, uint32_t u32FirstIdx, const char *pszName) {
  const size_t sztName = ze_kest_Utility_Strlen(pszName);
  return FindString(stJsmn, u32FirstIdx, [&](const Token &stToken) {
    return Length(stToken) == sztName && memcmp(stJsmn.pszStringData + stToken.start, pszName, sztName) == 0;
  });
}

// Finds the index of a token and requires that another token follows it. Otherwise returns false and reports
// under the given function name.
bool FindTarget(const char *pszFunction, const ZE_KEST_Jsmn_s &stJsmn, const Token *pstTarget,
                uint32_t *pu32Idx) {
  *pu32Idx = IndexOf(stJsmn, pstTarget);
  KEST_REQUIRE_OR_AS(pszFunction, *pu32Idx < stJsmn.u32TotalTokenCounter, false,
                     "Error! Can't find this pstTargetTokenInfo in pstJsmn!\n");
  KEST_REQUIRE_OR_AS(pszFunction, *pu32Idx + 1 < stJsmn.u32TotalTokenCounter, false,
                     "Error! This pstTargetTokenInfo doesn't have any object!\n");
  return true;
}

// The token after a key; NULL if the key is not in the array or is the last token.
const Token *ValueOf(const ZE_KEST_Jsmn_s &stJsmn, const Token *pstKey) {
  const uint32_t u32ValueIdx = IndexOf(stJsmn, pstKey) + 1;
  return u32ValueIdx < stJsmn.u32TotalTokenCounter ? &stJsmn.pstTokenInfo[u32ValueIdx] : nullptr;
}

}  // namespace

ZE_KEST_JsmnTokenInfo_s *ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(
    const ZE_KEST_Jsmn_s *pstJsmn, const ZE_KEST_JsmnTokenInfo_s *pstTargetTokenInfo,
    const char *pszDataName) {
  if (!kest::HasTokens(__func__, pstJsmn)) return nullptr;
  KEST_REQUIRE_OR(pszDataName != nullptr, nullptr, "pszDataName is NULL.\n");
  if (pstTargetTokenInfo == nullptr) return FindName(*pstJsmn, 0, pszDataName);

  uint32_t u32TargetIdx = 0;
  if (!FindTarget(__func__, *pstJsmn, pstTargetTokenInfo, &u32TargetIdx)) return nullptr;
  const Token &stObject = pstJsmn->pstTokenInfo[u32TargetIdx + 1];
  // Deliberate: the target itself and anything nested in its value can match, and only the first match is
  // considered, even if a later one would lie inside the object.
  Token *pstFound = FindName(*pstJsmn, u32TargetIdx, pszDataName);
  if (pstFound == nullptr || pstFound->start <= stObject.end) return pstFound;
  KEST_WRN("Warning! The matched pstTokenInfoRet (%u) is not inside of pstTargetTokenInfoObject (%u)!\n",
           static_cast<uint32_t>(pstFound->start), static_cast<uint32_t>(stObject.end));
  return nullptr;
}

ZE_KEST_JsmnTokenInfo_s *ze_kest_Utility_Jsmn_GetNextTokenInfo(
    const ZE_KEST_Jsmn_s *pstJsmn, const ZE_KEST_JsmnTokenInfo_s *pstTargetTokenInfo) {
  if (!kest::HasTokens(__func__, pstJsmn)) return nullptr;
  uint32_t u32TargetIdx = 0;
  if (pstTargetTokenInfo != nullptr && !FindTarget(__func__, *pstJsmn, pstTargetTokenInfo, &u32TargetIdx)) {
    return nullptr;
  }
  return FindString(*pstJsmn, u32TargetIdx + 1, [](const Token & /*stToken*/) { return true; });
}

uint32_t ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(const ZE_KEST_Jsmn_s *pstJsmn,
                                                      const ZE_KEST_JsmnTokenInfo_s *pstTokenInfo,
                                                      size_t *psztDataSize) {
  if (!kest::HasTokens(__func__, pstJsmn)) return ZE_KEST_INVALID_ARGUMENT;
  KEST_REQUIRE(pstTokenInfo != nullptr, "pstTokenInfo is NULL.\n");
  KEST_REQUIRE(psztDataSize != nullptr, "psztDataSize is NULL.\n");
  const Token *pstValue = ValueOf(*pstJsmn, pstTokenInfo);
  if (pstValue != nullptr) *psztDataSize = Length(*pstValue);
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(const ZE_KEST_Jsmn_s *pstJsmn,
                                                   const ZE_KEST_JsmnTokenInfo_s *pstTokenInfo, char *pszData,
                                                   size_t sztDataSize) {
  if (!kest::HasTokens(__func__, pstJsmn)) return ZE_KEST_INVALID_ARGUMENT;
  KEST_REQUIRE(pstTokenInfo != nullptr, "pstTokenInfo is NULL.\n");
  KEST_REQUIRE(pszData != nullptr, "pszData is NULL.\n");
  KEST_REQUIRE(sztDataSize != 0, "Invalid parameter: sztDataSize!\n");
  const Token *pstValue = ValueOf(*pstJsmn, pstTokenInfo);
  if (pstValue == nullptr) return ZE_KEST_OK;
  if (Length(*pstValue) != sztDataSize) {
    KEST_ERR("Error (0x%08X)! Data size is not matched (%zu, %u)!\n", ZE_KEST_NOTHING_TO_PROCESS, sztDataSize,
             Length(*pstValue));
    return ZE_KEST_NOTHING_TO_PROCESS;
  }
  memcpy(pszData, pstJsmn->pszStringData + pstValue->start, sztDataSize);
  return ZE_KEST_OK;
}
