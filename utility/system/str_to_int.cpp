// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstring>

#include "ze_kest/utility.h"

#include "utility/core/number_text.h"
#include "utility/core/report.h"

int32_t ze_kest_Utility_StrToInt(const char *pszSrc, uint32_t u32Length) {
  constexpr uint32_t kMaxLength = 32;
  char szNumber[128] = {};
  if (ze_kest_Utility_Strncpy(szNumber, pszSrc, std::min(u32Length, kMaxLength)) == nullptr) return 0;

  const bool bHex = strncmp(szNumber, "0x", 2) == 0;
  const int32_t s32Value = kest::ParseS32(szNumber, bHex ? 16 : 10);
  if (kest::IsOutOfRange(s32Value)) {
    KEST_ERR("format error: %s\n", szNumber);
    return 0;
  }
  return s32Value;
}
