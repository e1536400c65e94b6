// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

#include "debug/base/command_line.h"
#include "debug/requests/requests.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"
#include "utility/core/shared_name.h"

uint32_t u32KestCalculateDataRate = ZE_KEST_REQUEST_NONE;
char szKestCalculateDataRateName1[ZE_KEST_NAME_SIZE] = "";
char szKestCalculateDataRateName2[ZE_KEST_NAME_SIZE] = "";
uint32_t u32KestCalculateDataRateInputPort = 0;
uint32_t u32KestCalculateDataRateOutputPort = 0;

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_CalculateDataRate";

void TakePorts(const char *pszInput, const char *pszOutput) {
  const auto u32Input = static_cast<uint32_t>(ParseS32(pszInput));
  Store(u32KestCalculateDataRateInputPort, u32Input);
  KEST_PRINT_AS(kFunction, "[CAL_DATA_RATE]Input Port Number=%u\n", u32Input);
  const auto u32Output = static_cast<uint32_t>(ParseS32(pszOutput));
  Store(u32KestCalculateDataRateOutputPort, u32Output);
  KEST_PRINT_AS(kFunction, "[CAL_DATA_RATE]Output Port Number=%u\n", u32Output);
}

uint32_t RequestRate(const char *pszPipeline, CommandLine &line) {
  if (TakeName(kFunction, szKestCalculateDataRateName1, pszPipeline)) {
    KEST_PRINT_AS(kFunction, "[CAL_DATA_RATE]Pipeline Name=%s\n",
                  NameCopy(szKestCalculateDataRateName1).c_str());
  }
  const char *pszSub2 = line.Next(":");
  KEST_REQUIRE_AS(kFunction, pszSub2 != nullptr, "pszSub2 is NULL, format error\n");
  if (TakeName(kFunction, szKestCalculateDataRateName2, pszSub2)) {
    KEST_PRINT_AS(kFunction, "[CAL_DATA_RATE]Filter Name=%s\n",
                  NameCopy(szKestCalculateDataRateName2).c_str());
  }
  const char *pszSub3 = line.Next(",");
  // The second port is mandatory: an input port without "," is refused like missing ports.
  KEST_REQUIRE_AS(kFunction, line.Rest() != nullptr, "pszSub3 is NULL, format error\n");
  TakePorts(pszSub3, line.Rest());
  Store(u32KestCalculateDataRate, uint32_t{ZE_KEST_REQUEST_MADE});
  return ZE_KEST_OK;
}

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_CalculateDataRate(const char *pszLine) {
  CommandLine line(pszLine);
  KEST_INFO("pszLine=%s\n", Shown(pszLine));
  const char *pszSub = line.Next("=");
  KEST_REQUIRE(pszSub != nullptr, "pszSub is NULL, format error\n");
  KEST_INFO("pszSub4=%s,pszSub=%s\n", Shown(line.Rest()), pszSub);
  // Deliberate: unlike its neighbours, this handler ignores lines of other commands.
  if (ze_kest_Utility_Strcmp(pszSub, "kest_calculate_data_rate") != 0) return ZE_KEST_INVALID_ARGUMENT;

  const char *pszSub1 = line.Next(",");
  KEST_REQUIRE(pszSub1 != nullptr, "pszSub1 is NULL, format error\n");
  KEST_PRINT("[CAL_DATA_RATE]pszSub4=%s,pszSub1=%s\n", Shown(line.Rest()), pszSub1);
  KEST_PRINT("[CAL_DATA_RATE]Cmd=%s\n", pszSub1);
  if (ze_kest_Utility_Strcmp(pszSub1, "off") != 0) return RequestRate(pszSub1, line);
  KEST_PRINT("[CAL_DATA_RATE]Target=%s\n", pszSub1);
  ClearDataRateRequest();
  return ZE_KEST_OK;
}

void ClearDataRateRequest() {
  Store(u32KestCalculateDataRateInputPort, uint32_t{0});
  Store(u32KestCalculateDataRateOutputPort, uint32_t{0});
  Store(u32KestCalculateDataRate, uint32_t{ZE_KEST_REQUEST_NONE});
  ClearName(szKestCalculateDataRateName1);
  ClearName(szKestCalculateDataRateName2);
}

}  // namespace kest
