// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

#include "debug/requests/words.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"

namespace kest {

uint32_t RequestDataRate(const Request &request, const char *pszPipelineName, CommandLine &line) {
  TakePipelineName(request, pszPipelineName);
  const char *pszSub2 = line.Next(":");
  KEST_REQUIRE_AS(request.pszFunction, pszSub2 != nullptr, "pszSub2 is NULL, format error\n");
  TakeFilterName(request, pszSub2);
  const char *pszSub3 = line.Next(",");
  // The second port is mandatory: an input port without "," is refused like missing ports.
  KEST_REQUIRE_AS(request.pszFunction, line.Rest() != nullptr, "pszSub3 is NULL, format error\n");
  const auto u32Input = static_cast<uint32_t>(ParseS32(pszSub3));
  Store(u32KestCalculateDataRateInputPort, u32Input);
  KEST_PRINT_AS(request.pszFunction, "%sInput Port Number=%u\n", request.pszTag, u32Input);
  const auto u32Output = static_cast<uint32_t>(ParseS32(line.Rest()));
  Store(u32KestCalculateDataRateOutputPort, u32Output);
  KEST_PRINT_AS(request.pszFunction, "%sOutput Port Number=%u\n", request.pszTag, u32Output);
  Store(request.u32State, uint32_t{ZE_KEST_REQUEST_MADE});
  return ZE_KEST_OK;
}

}  // namespace kest
