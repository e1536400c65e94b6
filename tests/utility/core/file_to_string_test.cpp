// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ze_kest/utility.h"

#include "tests/support/debug_layer.h"
#include "tests/support/report_capture.h"
#include "utility/core/owned_memory.h"

using kest::test::ReportCapture;
using kest::test::WriteFile;

namespace {

constexpr const char *kPath = KEST_DEBUG_DIR "file";

}  // namespace

TEST(FileToString, GivesTheWholeFileZeroFilledToTheNextPageAboveItsSize) {
  for (const size_t sztSize : {size_t{1}, size_t{4095}, size_t{4096}, size_t{10000}}) {
    WriteFile(kPath, std::string(sztSize, 'j'));
    char *psz = nullptr;
    size_t sztRead = 0;
    ASSERT_EQ(ZE_KEST_OK, ze_kest_Utility_FileToString(kPath, &psz, &sztRead));
    const kest::Owned<char> string(psz);
    EXPECT_EQ(sztSize, sztRead);
    const size_t sztBuffer = (sztSize / 4096 + 1) * 4096;
    std::string expected(sztBuffer, '\0');
    expected.replace(0, sztSize, sztSize, 'j');
    EXPECT_EQ(expected, std::string(psz, sztBuffer));
  }
}

TEST(FileToString, WhatCannotBeReadFailsWithItsReport) {
  const ReportCapture capture;
  char szAnything[] = "x";
  char *psz = szAnything;
  size_t sztSize = 1;
  EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Utility_FileToString(KEST_DEBUG_DIR "missing", &psz, &sztSize));
  WriteFile(kPath, "");
  EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Utility_FileToString(kPath, &psz, &sztSize));
  EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Utility_FileToString(KEST_DEBUG_DIR, &psz, &sztSize));
  EXPECT_EQ(nullptr, psz);
  EXPECT_EQ(0u, sztSize);
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_FileToString(nullptr, &psz, &sztSize));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_FileToString(kPath, nullptr, &sztSize));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_FileToString(kPath, &psz, nullptr));
  EXPECT_TRUE(capture.Has("<ERR>", "Err! ze_kest_Utility_FileOpen failed!\n"));
  EXPECT_TRUE(capture.Has("<ERR>", "Invalid file size.\n"));
}
