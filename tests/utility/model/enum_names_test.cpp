// SPDX-License-Identifier: Apache-2.0
#include "tests/support/library_test.h"

TEST(EnumNames, FirstAndLastNameOfEveryEnumerationAndUnkownBehindThem) {
  const std::tuple<const char *(*)(uint32_t), const char *, uint32_t, const char *> aCases[] = {
      {ze_kest_Utility_DecPlayTypeEnumString, "DTV", 6, "TLV_PARSER"},
      {ze_kest_Utility_FilterDecTypeEnumString, "DUMMY", 20, "C3DA"},
      {ze_kest_Utility_DecodeFormatEnumString, "LPCM", 25, "FLAC"},
      {ze_kest_Utility_DigitalOutputEnumString, "Not Connected", 7, "DTSHD"},
      {ze_kest_Utility_MpeghStreamTypeEnumString, "MHM1", 4, "LC_L3"}};
  for (const auto &[pfnName, pszFirst, u32Last, pszLast] : aCases) {
    SCOPED_TRACE(pszFirst);
    EXPECT_STREQ(pszFirst, pfnName(0));
    EXPECT_STREQ(pszLast, pfnName(u32Last));
    EXPECT_STREQ("Unkown", pfnName(u32Last + 1));
    EXPECT_STREQ("Unkown", pfnName(UINT32_MAX));
  }
  EXPECT_STREQ("OPUS", ze_kest_Utility_FilterDecTypeEnumString(18));
  EXPECT_STREQ("MSADPCM", ze_kest_Utility_DecodeFormatEnumString(15));
}
