// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

#include "debug/requests/words.h"
#include "utility/core/missing_text.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"

namespace kest {

uint32_t RequestPcmLevel(const Request &request, const char *pszPipelineName, CommandLine &line) {
  TakePipelineName(request, pszPipelineName);
  const char *pszSub1 = line.Next(",");
  KEST_REQUIRE_AS(request.pszFunction, pszSub1 != nullptr, "pszSub1 is NULL, format error\n");
  KEST_PRINT_AS(request.pszFunction, "%spszSub3=%s,pszSub2=%s,pszSub1=%s\n", request.pszTag,
                Shown(line.Rest()), pszPipelineName, pszSub1);
  Say(request, "Cmd", pszSub1);
  TakeFilterName(request, pszSub1);
  const uint32_t u32Count = IsEmpty(line.Rest()) ? 0 : static_cast<uint32_t>(ParseS32(line.Rest()));
  Store(u32KestCalPcmLevMaxCount, u32Count);
  Store(u32KestCalPcmLevCount, u32Count);
  Store(request.u32State, uint32_t{ZE_KEST_REQUEST_MADE});
  KEST_PRINT_AS(request.pszFunction, "%sMaxCount=%u Count=%u\n", request.pszTag, u32Count, u32Count);
  return ZE_KEST_OK;
}

}  // namespace kest
