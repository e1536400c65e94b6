// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include "tests/support/library_test.h"
#include "utility/core/owned_file.h"
#include "utility/core/owned_memory.h"

namespace kest::test {
namespace {

constexpr const char *kPath = KEST_DEBUG_DIR "file";

// All lines of a file with the contents, read through a scratch buffer of the size.
Texts LinesOf(const std::string &contents, int s32ScratchSize) {
  WriteFile(kPath, contents);
  const OwnedFile file(ze_kest_Utility_FileOpen(kPath, "r"));
  std::vector<char> scratch(static_cast<size_t>(s32ScratchSize));
  Texts lines;
  while (true) {
    const Owned<char> line(ze_kest_Utility_FileReadLine(scratch.data(), s32ScratchSize, file.get()));
    if (line == nullptr) return lines;
    lines.emplace_back(line.get());
  }
}

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
  for (const char *pszText : {"Error! Fail to fseek file\n", "Error! Fail to fseek()!\n",
                              "Error! Fail to ftell()!\n", "Err! ZE_KEST_FTELL ret: -1\n"}) {
    EXPECT_TRUE(capture.Has("<ERR>", pszText)) << pszText;
  }
}

TEST(Files, MissingArgumentsAreReportedAndAnswered) {
  const ReportCapture capture;
  WriteFile(kPath, "x");
  const OwnedFile file(ze_kest_Utility_FileOpen(kPath, "r"));
  char sz[4];
  EXPECT_THAT(
      (std::vector<void *>{ze_kest_Utility_FileOpen(nullptr, "r"), ze_kest_Utility_FileOpen(kPath, nullptr),
                           ze_kest_Utility_FileReadLine(nullptr, 4, file.get()),
                           ze_kest_Utility_FileReadLine(sz, 1, file.get()),
                           ze_kest_Utility_FileReadLine(sz, 4, nullptr)}),
      Each(nullptr));
  EXPECT_THAT(
      (std::vector<size_t>{
          ze_kest_Utility_FileRead(nullptr, 1, 1, file.get()), ze_kest_Utility_FileRead(sz, 1, 1, nullptr),
          ze_kest_Utility_FileWrite(nullptr, 1, 1, file.get()), ze_kest_Utility_FileWrite(sz, 1, 1, nullptr),
          ze_kest_Utility_GetFileSize(nullptr)}),
      Each(0u));
  EXPECT_EQ(EOF, ze_kest_Utility_FileClose(nullptr));
  EXPECT_NE(0, ze_kest_Utility_FileSeek(nullptr, 0, SEEK_SET));
  for (FILE *const pFile : {static_cast<FILE *>(nullptr), file.get()}) {
    EXPECT_NE(0, ze_kest_Utility_FileSetPos(pFile, nullptr));
    EXPECT_NE(0, ze_kest_Utility_FileGetPos(pFile, nullptr));
  }
  EXPECT_EQ(16u, capture.Texts("<ERR>").size());
}

TEST(FileLine, LinesOfAnyLengthComeWholeAndWithoutTheirEnds) {
  const std::string longLine(1000, 'x');
  const Texts expected = {"one", "", "two", longLine, "last"};
  for (const char *pszEnd : {"\n", "\r\n"}) {
    std::string contents;
    for (const std::string &line : expected)
      contents += line + pszEnd;
    for (const int s32Scratch : {2, 3, 8, 2000})
      EXPECT_EQ(expected, LinesOf(contents, s32Scratch));
  }
  EXPECT_EQ((Texts{"a", "b"}), LinesOf("a\nb", 16));
  EXPECT_EQ((Texts{"a"}), LinesOf("a\r", 16));
  EXPECT_TRUE(LinesOf("", 16).empty());
}

TEST(FileToString, GivesTheWholeFileZeroFilledToTheNextPageAboveItsSize) {
  for (const size_t sztSize : {size_t{1}, size_t{4095}, size_t{4096}, size_t{10000}}) {
    WriteFile(kPath, std::string(sztSize, 'j'));
    char *psz = nullptr;
    size_t sztRead = 0;
    ASSERT_EQ(ZE_KEST_OK, ze_kest_Utility_FileToString(kPath, &psz, &sztRead));
    const Owned<char> string(psz);
    EXPECT_EQ(sztSize, sztRead);
    const size_t sztBuffer = (sztSize / 4096 + 1) * 4096;
    EXPECT_EQ(std::string(sztSize, 'j') + std::string(sztBuffer - sztSize, '\0'),
              std::string(psz, sztBuffer));
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
  // A pipe that nobody writes to must not make the reader wait.
  ASSERT_EQ(0, mkfifo(KEST_DEBUG_DIR "pipe", 0666));
  EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Utility_FileToString(KEST_DEBUG_DIR "pipe", &psz, &sztSize));
  EXPECT_EQ(nullptr, psz);
  EXPECT_EQ(0u, sztSize);
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_FileToString(nullptr, &psz, &sztSize));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_FileToString(kPath, nullptr, &sztSize));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_FileToString(kPath, &psz, nullptr));
  EXPECT_TRUE(capture.Has("<ERR>", "Err! ze_kest_Utility_FileOpen failed!\n"));
  EXPECT_TRUE(capture.Has("<ERR>", "Invalid file size.\n"));
}

}  // namespace kest::test
