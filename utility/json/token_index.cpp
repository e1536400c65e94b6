// SPDX-License-Identifier: Apache-2.0
// Creating, filling and destroying a JSON context and its token index.
#include "ze_kest/json.h"
#include "ze_kest/utility.h"

#include "utility/core/report.h"
#include "utility/json/context_check.h"
#include "utility/json/tokenizer.h"

namespace {

constexpr size_t kArrayStep = 4096;  // bytes: initial size and growth step of the token array

void FreeTokenArray(ZE_KEST_Jsmn_s &stJsmn) {
  void *pv = stJsmn.pstTokenInfo;
  ze_kest_Utility_MemoryFree(&pv);
  stJsmn.pstTokenInfo = nullptr;
  stJsmn.sztTokenInfoSize = 0;
}

// On failure the old array stays in place. A size of 0 means that the addition in the caller has wrapped.
bool ResizeTokenArray(ZE_KEST_Jsmn_s &stJsmn, size_t sztSize) {
  void *pv = sztSize == 0 ? nullptr : ze_kest_Utility_MemoryReAlloc(stJsmn.pstTokenInfo, sztSize);
  if (pv == nullptr) return false;
  stJsmn.pstTokenInfo = static_cast<ZE_KEST_JsmnTokenInfo_s *>(pv);
  stJsmn.sztTokenInfoSize = sztSize;
  return true;
}

}  // namespace

uint32_t ze_kest_Utility_Jsmn_Create(ZE_KEST_Jsmn_s *pstJsmn) {
  KEST_REQUIRE(pstJsmn != nullptr, "pstJsmn is NULL.\n");
  *pstJsmn = {};
  pstJsmn->toksuper = -1;
  void *pv = nullptr;
  if (ze_kest_Utility_MemoryAlloc(&pv, kArrayStep) != ZE_KEST_OK) {
    KEST_ERR("Error (0x%08X)! Fail to allocate %zu bytes of memory to pstTokenInfoTmp!\n",
             ZE_KEST_OUT_OF_MEMORY, kArrayStep);
    return ZE_KEST_OUT_OF_MEMORY;
  }
  pstJsmn->pstTokenInfo = static_cast<ZE_KEST_JsmnTokenInfo_s *>(pv);
  pstJsmn->sztTokenInfoSize = kArrayStep;
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_Jsmn_Destroy(ZE_KEST_Jsmn_s *pstJsmn) {
  if (!kest::HasTokenArray(__func__, pstJsmn)) return ZE_KEST_INVALID_ARGUMENT;
  FreeTokenArray(*pstJsmn);
  *pstJsmn = {};
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_Jsmn_FillUpTokenInfo(ZE_KEST_Jsmn_s *pstJsmn) {
  return kest::FillUpTokenInfo(pstJsmn, nullptr);
}

namespace kest {

uint32_t FillUpTokenInfo(ZE_KEST_Jsmn_s *pstJsmn, IsToGiveUp pfnIsToGiveUp) {
  constexpr const char *kFunction = "ze_kest_Utility_Jsmn_FillUpTokenInfo";
  if (!HasTokenArray(kFunction, pstJsmn)) return ZE_KEST_INVALID_ARGUMENT;
  KEST_REQUIRE_AS(kFunction, pstJsmn->pszStringData != nullptr, "pstJsmn->pszStringData is NULL.\n");
  KEST_REQUIRE_AS(kFunction, pstJsmn->sztStringDataSize != 0,
                  "Invalid parameter: pstJsmn->sztStringDataSize!\n");

  int32_t s32Tokens = Tokenize(*pstJsmn, pfnIsToGiveUp);
  for (; s32Tokens == kNoRoom; s32Tokens = Tokenize(*pstJsmn, pfnIsToGiveUp)) {
    const size_t sztSize = pstJsmn->sztTokenInfoSize + kArrayStep;
    if (!ResizeTokenArray(*pstJsmn, sztSize)) {
      KEST_ERR_AS(kFunction, "Error (0x%08X)! Fail to allocate %zu bytes of memory to pstTokenInfoTmp!\n",
                  ZE_KEST_OUT_OF_MEMORY, sztSize);
      return ZE_KEST_OUT_OF_MEMORY;
    }
  }
  if (s32Tokens <= 0) {
    FreeTokenArray(*pstJsmn);
    KEST_ERR_AS(kFunction, "Error (0x%08X)! Fail to fill up token info with error %d!\n", ZE_KEST_FAILED,
                s32Tokens);
    return ZE_KEST_FAILED;
  }
  pstJsmn->u32TotalTokenCounter = static_cast<uint32_t>(s32Tokens);
  return ZE_KEST_OK;
}

}  // namespace kest
