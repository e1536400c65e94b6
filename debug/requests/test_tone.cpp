// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

#include "debug/base/command_line.h"
#include "debug/requests/requests.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"
#include "utility/core/shared_name.h"

uint32_t u32KestSendTestTone = ZE_KEST_REQUEST_NONE;
char szKestSendTestToneName1[ZE_KEST_NAME_SIZE] = "";
char szKestSendTestToneName2[ZE_KEST_NAME_SIZE] = "";
uint32_t u32KestSendTestToneInputPort = 0;

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_SendTestTone";

uint32_t RequestTone(const char *pszPipeline, CommandLine &line) {
  if (TakeName(kFunction, szKestSendTestToneName1, pszPipeline)) {
    KEST_PRINT_AS(kFunction, "[SEND_TEST_TONE]Pipeline Name=%s\n", NameCopy(szKestSendTestToneName1).c_str());
  }
  const char *pszSub2 = line.Next(":");
  // The port is mandatory: a filter name without ":" is refused like a missing filter name.
  KEST_REQUIRE_AS(kFunction, line.Rest() != nullptr, "pszSub2 is NULL, format error\n");
  if (TakeName(kFunction, szKestSendTestToneName2, pszSub2)) {
    KEST_PRINT_AS(kFunction, "[SEND_TEST_TONE]Filter Name=%s\n", NameCopy(szKestSendTestToneName2).c_str());
  }
  const auto u32Port = static_cast<uint32_t>(ParseS32(line.Rest()));
  Store(u32KestSendTestToneInputPort, u32Port);
  KEST_PRINT_AS(kFunction, "[SEND_TEST_TONE]Input Port Number=%u\n", u32Port);
  Store(u32KestSendTestTone, uint32_t{ZE_KEST_REQUEST_MADE});
  return ZE_KEST_OK;
}

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_SendTestTone(const char *pszLine) {
  CommandLine line(pszLine);
  KEST_INFO("pszLine=%s\n", Shown(pszLine));
  const char *pszSub = line.Next("=");
  KEST_REQUIRE(pszSub != nullptr, "pszSub is NULL, format error\n");
  KEST_INFO("pszSub3=%s,pszSub=%s\n", Shown(line.Rest()), pszSub);
  if (ze_kest_Utility_Strcmp(pszSub, "kest_send_test_tone") != 0) {
    ClearTestToneRequest();  // deliberate: any other command drops the request
    return ZE_KEST_INVALID_ARGUMENT;
  }

  const char *pszSub1 = line.Next(",");
  KEST_REQUIRE(pszSub1 != nullptr, "pszSub1 is NULL, format error\n");
  KEST_PRINT("[SEND_TEST_TONE]pszSub3=%s,pszSub1=%s\n", Shown(line.Rest()), pszSub1);
  KEST_PRINT("[SEND_TEST_TONE]Cmd=%s\n", pszSub1);
  if (ze_kest_Utility_Strcmp(pszSub1, "off") != 0) return RequestTone(pszSub1, line);
  KEST_PRINT("[SEND_TEST_TONE]Target=%s\n", pszSub1);
  ClearTestToneRequest();
  return ZE_KEST_OK;
}

void ClearTestToneRequest() {
  Store(u32KestSendTestTone, uint32_t{ZE_KEST_REQUEST_NONE});
  ClearName(szKestSendTestToneName1);
  ClearName(szKestSendTestToneName2);
  Store(u32KestSendTestToneInputPort, uint32_t{0});
}

}  // namespace kest
