// SPDX-License-Identifier: Apache-2.0
#include "tests/support/library_test.h"

using kest::test::ReportCapture;

TEST(SourceType, TheFirstSourceOfTheSearchOrderWins) {
  const ReportCapture capture;
  ZE_KEST_Filter_s stFilter = {};
  const auto sourceOf = [&stFilter](const char *pszConfig) {
    unsigned int eSource = 99;
    stFilter.pszConfig = pszConfig;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_GetSourceType(&stFilter, &eSource));
    return eSource;
  };
  EXPECT_EQ(5u, sourceOf("a;InputSource=DTV;InputSource=MM"));
  EXPECT_EQ(3u, sourceOf("InputSource=DTV"));
  EXPECT_EQ(2u, sourceOf("InputSource=ATV"));
  EXPECT_EQ(4u, sourceOf("x InputSource=HDMI1"));
  EXPECT_EQ(1u, sourceOf("InputSource=ANALOG"));
  EXPECT_EQ(0u, sourceOf("InputSource="));
  EXPECT_EQ(0u, sourceOf(nullptr));
  unsigned int eSource = 0;
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_GetSourceType(nullptr, &eSource));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_GetSourceType(&stFilter, nullptr));
  EXPECT_TRUE(capture.Has("<INFO>", "eSourceType:5\n"));
}
