// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

#include "debug/base/command_line.h"
#include "debug/requests/requests.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"
#include "utility/core/shared_name.h"

uint32_t u32KestCalPcmLev = ZE_KEST_REQUEST_NONE;
char szKestCalPcmLevName1[ZE_KEST_NAME_SIZE] = "";
char szKestCalPcmLevName2[ZE_KEST_NAME_SIZE] = "";
uint32_t u32KestCalPcmLevMaxCount = 0;
uint32_t u32KestCalPcmLevCount = 0;

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_CalPcmLev";

void ClearNames() {
  ClearName(szKestCalPcmLevName1);
  ClearName(szKestCalPcmLevName2);
}

uint32_t RequestLevel(const char *pszSub2, CommandLine &line) {
  if (TakeName(kFunction, szKestCalPcmLevName1, pszSub2)) {
    KEST_PRINT_AS(kFunction, "[CAL_PCM_LEV]Pipeline Name=%s\n", NameCopy(szKestCalPcmLevName1).c_str());
  }
  const char *pszSub1 = line.Next(",");
  KEST_REQUIRE_AS(kFunction, pszSub1 != nullptr, "pszSub1 is NULL, format error\n");
  KEST_PRINT_AS(kFunction, "[CAL_PCM_LEV]pszSub3=%s,pszSub2=%s,pszSub1=%s\n", Shown(line.Rest()), pszSub2,
                pszSub1);
  KEST_PRINT_AS(kFunction, "[CAL_PCM_LEV]Cmd=%s\n", pszSub1);
  if (TakeName(kFunction, szKestCalPcmLevName2, pszSub1)) {
    KEST_PRINT_AS(kFunction, "[CAL_PCM_LEV]Filter Name=%s\n", NameCopy(szKestCalPcmLevName2).c_str());
  }
  const uint32_t u32Count = IsEmpty(line.Rest()) ? 0 : static_cast<uint32_t>(ParseS32(line.Rest()));
  Store(u32KestCalPcmLevMaxCount, u32Count);
  Store(u32KestCalPcmLevCount, u32Count);
  Store(u32KestCalPcmLev, uint32_t{ZE_KEST_REQUEST_MADE});
  KEST_PRINT_AS(kFunction, "[CAL_PCM_LEV]MaxCount=%u Count=%u\n", u32Count, u32Count);
  return ZE_KEST_OK;
}

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_CalPcmLev(const char *pszLine) {
  CommandLine line(pszLine);
  KEST_INFO("pszLine=%s\n", Shown(pszLine));
  const char *pszSub = line.Next("=");
  KEST_REQUIRE(pszSub != nullptr, "pszSub is NULL, format error\n");
  KEST_INFO("pszSub3=%s,pszSub=%s\n", Shown(line.Rest()), pszSub);
  if (ze_kest_Utility_Strcmp(pszSub, "kest_calpcmlev") != 0) {
    // Deliberate: any other command offered to this handler makes the request, to every filter.
    Store(u32KestCalPcmLev, uint32_t{ZE_KEST_REQUEST_MADE});
    ClearNames();
    return ZE_KEST_INVALID_ARGUMENT;
  }

  const char *pszSub2 = line.Next(",");
  KEST_REQUIRE(pszSub2 != nullptr, "pszSub2 is NULL, format error\n");
  KEST_PRINT("[CAL_PCM_LEV]pszSub3=%s,pszSub2=%s\n", Shown(line.Rest()), pszSub2);
  KEST_PRINT("[CAL_PCM_LEV]Cmd=%s\n", pszSub2);
  if (ze_kest_Utility_Strcmp(pszSub2, "off") != 0) return RequestLevel(pszSub2, line);
  KEST_PRINT("[CAL_PCM_LEV]Target=%s\n", pszSub2);
  ClearPcmLevelRequest();
  return ZE_KEST_OK;
}

void ClearPcmLevelRequest() {
  Store(u32KestCalPcmLevMaxCount, uint32_t{0});
  Store(u32KestCalPcmLev, uint32_t{ZE_KEST_REQUEST_NONE});
  Store(u32KestCalPcmLevCount, uint32_t{0});
  ClearNames();
}

}  // namespace kest
