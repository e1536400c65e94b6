// SPDX-License-Identifier: Apache-2.0
#include "tests/support/library_test.h"

using kest::test::ReportCapture;

TEST(PcmRate, ZeroFieldsStandForTheirDefaults) {
  ZE_KEST_PcmInfo_s stFormat = {};
  EXPECT_EQ(192u, ze_kest_Utility_BytesPerMs(&stFormat));
  stFormat.u32TotalChannels = 2;
  stFormat.u32SampleRate = 44100;
  stFormat.u32BitWidth = 16;
  EXPECT_EQ(176u, ze_kest_Utility_BytesPerMs(&stFormat));
  stFormat.u32TotalChannels = 6;
  stFormat.u32BitWidth = 24;
  EXPECT_EQ(3u * 6 * 44, ze_kest_Utility_BytesPerMs(&stFormat));
  const ReportCapture capture;
  EXPECT_EQ(0u, ze_kest_Utility_BytesPerMs(nullptr));
  EXPECT_TRUE(capture.Has("<ERR>", "pstFormat is NULL."));
}
