// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>

#include "tests/support/library_test.h"

TEST(Strings, StrcmpOrdersByLengthBeforeContents) {
  EXPECT_EQ(-1, ze_kest_Utility_Strcmp("b", "aa"));
  EXPECT_EQ(1, ze_kest_Utility_Strcmp("aa", "b"));
  EXPECT_LT(ze_kest_Utility_Strcmp("aa", "ab"), 0);
  EXPECT_EQ(0, ze_kest_Utility_Strcmp(nullptr, ""));
  EXPECT_EQ(0, ze_kest_Utility_Strcmp(nullptr, nullptr));
}

TEST(Strings, TheOthersAreTheStandardFunctions) {
  char sz[16] = "abc";
  EXPECT_LT(ze_kest_Utility_Strncmp("abc", "abd", 3), 0);
  EXPECT_EQ(0, ze_kest_Utility_Strncmp("abc", "abd", 2));
  EXPECT_STREQ("abcde", ze_kest_Utility_Strncat(sz, "defg", 2));
  EXPECT_EQ(sz + 3, ze_kest_Utility_Strchr(sz, 'd'));
  EXPECT_STREQ("xycde", ze_kest_Utility_Strncpy(sz, "xyz", 2));
  char *pszCopy = ze_kest_Utility_Strdup("k=v");
  char *pszRest = pszCopy;
  EXPECT_STREQ("k", ze_kest_Utility_Strsep(&pszRest, "="));
  EXPECT_STREQ("v", pszRest);
  free(pszCopy);
}

TEST(Strings, MissingStringsAreTolerated) {
  char szDst[4] = "x";
  char *pszRest = nullptr;
  EXPECT_EQ(0u, ze_kest_Utility_Strlen(nullptr));
  EXPECT_EQ(0, ze_kest_Utility_Strncmp(nullptr, "", 3));
  EXPECT_THAT((std::vector<const char *>{
                  ze_kest_Utility_Strncpy(szDst, nullptr, 3), ze_kest_Utility_Strncpy(nullptr, "x", 1),
                  ze_kest_Utility_Strncat(nullptr, "x", 1), ze_kest_Utility_Strncat(szDst, nullptr, 1),
                  ze_kest_Utility_Strdup(nullptr), ze_kest_Utility_Strsep(nullptr, ","),
                  ze_kest_Utility_Strsep(&pszRest, ","), ze_kest_Utility_Strchr(nullptr, 'x')}),
              testing::Each(nullptr));
}
