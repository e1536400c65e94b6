// SPDX-License-Identifier: Apache-2.0
#include "tests/support/library_test.h"

TEST(EnumNames, FirstAndLastNameOfEveryEnumerationAndUnkownBehindThem) {
  struct {
    const char *(*pfnName)(uint32_t);
    const char *pszFirst;
    uint32_t u32Last;
    const char *pszLast;
  } const aCases[] = {{ze_kest_Utility_DecPlayTypeEnumString, "DTV", 6, "TLV_PARSER"},
                      {ze_kest_Utility_FilterDecTypeEnumString, "DUMMY", 20, "C3DA"},
                      {ze_kest_Utility_DecodeFormatEnumString, "LPCM", 25, "FLAC"},
                      {ze_kest_Utility_DigitalOutputEnumString, "Not Connected", 7, "DTSHD"},
                      {ze_kest_Utility_MpeghStreamTypeEnumString, "MHM1", 4, "LC_L3"}};
  for (const auto &names : aCases) {
    EXPECT_STREQ(names.pszFirst, names.pfnName(0));
    EXPECT_STREQ(names.pszLast, names.pfnName(names.u32Last));
    EXPECT_STREQ("Unkown", names.pfnName(names.u32Last + 1));
    EXPECT_STREQ("Unkown", names.pfnName(UINT32_MAX));
  }
  EXPECT_STREQ("OPUS", ze_kest_Utility_FilterDecTypeEnumString(18));
  EXPECT_STREQ("MSADPCM", ze_kest_Utility_DecodeFormatEnumString(15));
}
