// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

#include "debug/requests/words.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"

namespace kest {

uint32_t RequestTestTone(const Request &request, const char *pszPipelineName, CommandLine &line) {
  TakePipelineName(request, pszPipelineName);
  const char *pszSub2 = line.Next(":");
  // The port is mandatory: a filter name without ":" is refused like a missing filter name.
  KEST_REQUIRE_AS(request.pszFunction, line.Rest() != nullptr, "pszSub2 is NULL, format error\n");
  TakeFilterName(request, pszSub2);
  const auto u32Port = static_cast<uint32_t>(ParseS32(line.Rest()));
  Store(u32KestSendTestToneInputPort, u32Port);
  KEST_PRINT_AS(request.pszFunction, "%sInput Port Number=%u\n", request.pszTag, u32Port);
  Store(request.u32State, uint32_t{ZE_KEST_REQUEST_MADE});
  return ZE_KEST_OK;
}

}  // namespace kest
