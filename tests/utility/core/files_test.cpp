// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ze_kest/utility.h"

#include "tests/support/debug_layer.h"
#include "tests/support/report_capture.h"
#include "utility/core/owned_file.h"

using kest::OwnedFile;
using kest::test::ReportCapture;
using kest::test::WriteFile;

namespace {

constexpr const char *kPath = KEST_DEBUG_DIR "file";

}  // namespace

TEST(Files, SizeIsTakenAndTheFileLeftAtItsStart) {
  WriteFile(kPath, "12345");
  const OwnedFile file(ze_kest_Utility_FileOpen(kPath, "r"));
  fpos_t stStart;
  EXPECT_EQ(0, ze_kest_Utility_FileGetPos(file.get(), &stStart));
  EXPECT_EQ(0, ze_kest_Utility_FileSeek(file.get(), 3, SEEK_SET));
  EXPECT_EQ(5u, ze_kest_Utility_GetFileSize(file.get()));
  char sz[6] = {};
  EXPECT_EQ(5u, ze_kest_Utility_FileRead(sz, 1, 5, file.get()));
  EXPECT_STREQ("12345", sz);
  EXPECT_EQ(0, ze_kest_Utility_FileSetPos(file.get(), &stStart));
  EXPECT_EQ(2u, ze_kest_Utility_FileRead(sz, 2, 2, file.get()));
}

TEST(Files, WhatTheDeviceRefusesIsReported) {
  const ReportCapture capture;
  FILE *pFull = ze_kest_Utility_FileOpen("/dev/full", "w");
  ASSERT_NE(nullptr, pFull);
  const std::vector<char> much(1 << 20);
  EXPECT_LT(ze_kest_Utility_FileWrite(much.data(), 1, much.size(), pFull), much.size());
  EXPECT_TRUE(capture.Has("<WRN>", "Warning! Exptect to write 1048576 count, but only "));
  ze_kest_Utility_FileClose(pFull);
  pFull = ze_kest_Utility_FileOpen("/dev/full", "w");
  EXPECT_EQ(1u, ze_kest_Utility_FileWrite("x", 1, 1, pFull));
  EXPECT_EQ(EOF, ze_kest_Utility_FileClose(pFull));
  EXPECT_TRUE(capture.Has("<ERR>", "Error! Fail to close file\n"));

  // A pipe has no position.
  FILE *pPipe = popen("true", "r");
  EXPECT_NE(0, ze_kest_Utility_FileSeek(pPipe, 0, SEEK_SET));
  EXPECT_EQ(0u, ze_kest_Utility_GetFileSize(pPipe));
  pclose(pPipe);
  EXPECT_TRUE(capture.Has("<ERR>", "Error! Fail to fseek file\n"));
  EXPECT_TRUE(capture.Has("<ERR>", "Error! Fail to fseek()!\n"));
  EXPECT_TRUE(capture.Has("<ERR>", "Error! Fail to ftell()!\n"));
  EXPECT_TRUE(capture.Has("<ERR>", "Err! ZE_KEST_FTELL ret: -1\n"));
}

TEST(Files, MissingArgumentsAreReportedAndAnswered) {
  const ReportCapture capture;
  WriteFile(kPath, "x");
  const OwnedFile file(ze_kest_Utility_FileOpen(kPath, "r"));
  char sz[4];
  EXPECT_EQ(nullptr, ze_kest_Utility_FileOpen(nullptr, "r"));
  EXPECT_EQ(nullptr, ze_kest_Utility_FileOpen(kPath, nullptr));
  EXPECT_EQ(EOF, ze_kest_Utility_FileClose(nullptr));
  EXPECT_EQ(0u, ze_kest_Utility_FileRead(nullptr, 1, 1, file.get()));
  EXPECT_EQ(0u, ze_kest_Utility_FileRead(sz, 1, 1, nullptr));
  EXPECT_EQ(0u, ze_kest_Utility_FileWrite(nullptr, 1, 1, file.get()));
  EXPECT_EQ(0u, ze_kest_Utility_FileWrite(sz, 1, 1, nullptr));
  EXPECT_EQ(nullptr, ze_kest_Utility_FileReadLine(nullptr, 4, file.get()));
  EXPECT_EQ(nullptr, ze_kest_Utility_FileReadLine(sz, 1, file.get()));
  EXPECT_EQ(nullptr, ze_kest_Utility_FileReadLine(sz, 4, nullptr));
  EXPECT_NE(0, ze_kest_Utility_FileSeek(nullptr, 0, SEEK_SET));
  EXPECT_NE(0, ze_kest_Utility_FileSetPos(nullptr, nullptr));
  EXPECT_NE(0, ze_kest_Utility_FileSetPos(file.get(), nullptr));
  EXPECT_NE(0, ze_kest_Utility_FileGetPos(nullptr, nullptr));
  EXPECT_NE(0, ze_kest_Utility_FileGetPos(file.get(), nullptr));
  EXPECT_EQ(0u, ze_kest_Utility_GetFileSize(nullptr));
  EXPECT_EQ(16u, capture.Texts("<ERR>").size());
}
