// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

#include "debug/requests/words.h"
#include "utility/core/missing_text.h"
#include "utility/core/report.h"

namespace kest {

// Deliberate: both set the kind before they look at the names, so a line without names combines it with the
// old ones.

uint32_t SelectPipeline(const Request &request, const char *pszWord, CommandLine &line) {
  SayTarget(request, pszWord);
  Store(request.u32State, uint32_t{ZE_KEST_TARGET_PIPELINE});
  return TakePipelineName(request, line.Rest()) ? ZE_KEST_OK : ZE_KEST_INVALID_ARGUMENT;
}

uint32_t SelectFilter(const Request &request, const char *pszWord, CommandLine &line) {
  SayTarget(request, pszWord);
  Store(request.u32State, uint32_t{ZE_KEST_TARGET_FILTER});
  const char *pszSub2 = line.Next(":");
  KEST_REQUIRE_AS(request.pszFunction, pszSub2 != nullptr, "pszSub2 is NULL, format error\n");
  if (request.pszRest != nullptr) {
    KEST_INFO_AS(request.pszFunction, "%s=%s,pszSub2=%s\n", request.pszRest, Shown(line.Rest()), pszSub2);
  }
  const bool bPipeline = TakePipelineName(request, pszSub2);
  const bool bFilter = TakeFilterName(request, line.Rest());
  return bPipeline || bFilter ? ZE_KEST_OK : ZE_KEST_INVALID_ARGUMENT;
}

}  // namespace kest
