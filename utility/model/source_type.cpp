// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "ze_kest/utility.h"

#include "utility/core/report.h"

namespace {

struct Source {
  const char *pszSetting;
  unsigned int eSourceType;
};

// In the order of the search: the first setting found wins.
constexpr Source kSources[] = {{"InputSource=MM", 5},
                               {"InputSource=DTV", 3},
                               {"InputSource=ATV", 2},
                               {"InputSource=HDMI", 4},
                               {"InputSource=ANALOG", 1}};

unsigned int SourceIn(const char *pszConfig) {
  if (pszConfig == nullptr) return 0;
  for (const Source &source : kSources) {
    if (strstr(pszConfig, source.pszSetting) != nullptr) return source.eSourceType;
  }
  return 0;
}

}  // namespace

uint32_t ze_kest_Utility_GetSourceType(const ZE_KEST_Filter_s *pstFilter, unsigned int *peSourceType) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE(peSourceType != nullptr, "peSourceType is NULL.\n");
  *peSourceType = SourceIn(pstFilter->pszConfig);
  KEST_INFO("eSourceType:%d\n", static_cast<int>(*peSourceType));
  return ZE_KEST_OK;
}
