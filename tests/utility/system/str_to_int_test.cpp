// SPDX-License-Identifier: Apache-2.0
#include "tests/support/library_test.h"

using kest::test::ReportCapture;

TEST(StrToInt, ReadsDecimalAndHexadecimalWithinTheGivenLength) {
  EXPECT_EQ(1234, ze_kest_Utility_StrToInt("1234", 4));
  EXPECT_EQ(12, ze_kest_Utility_StrToInt("1234", 2));
  EXPECT_EQ(-7, ze_kest_Utility_StrToInt("-7xyz", 5));
  EXPECT_EQ(0x1F, ze_kest_Utility_StrToInt("0x1F", 4));
  EXPECT_EQ(0, ze_kest_Utility_StrToInt("x", 1));
  EXPECT_EQ(0, ze_kest_Utility_StrToInt("", 0));
  EXPECT_EQ(0, ze_kest_Utility_StrToInt(nullptr, 4));
  // No more than 32 characters are read: the digit behind 31 blanks counts, the next one does not.
  EXPECT_EQ(1, ze_kest_Utility_StrToInt("                               12", 100));
}

TEST(StrToInt, ANumberBeyond32BitsOrOnTheLimitIsAFormatError) {
  const ReportCapture capture;
  EXPECT_EQ(2147483646, ze_kest_Utility_StrToInt("2147483646", 10));
  EXPECT_TRUE(capture.Reports().empty());
  for (const char *psz : {"2147483647", "-2147483648", "99999999999", "0x7fffffff", "0xFFFFFFFF"}) {
    EXPECT_EQ(0, ze_kest_Utility_StrToInt(psz, 32)) << psz;
    EXPECT_TRUE(capture.Has("<ERR>", std::string("format error: ") + psz)) << psz;
  }
}
