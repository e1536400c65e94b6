// SPDX-License-Identifier: Apache-2.0
#include <filesystem>

#include "tests/support/library_test.h"

namespace kest::test {
namespace {

constexpr const char *kDir = KEST_DEBUG_DIR;
const std::string kPath = KEST_DEBUG_DIR "dumped";
const char kRing[] = "0123456789";

uint32_t DumpRing(const char *pszPosition, size_t sztSize) {
  return ze_kest_Utility_DumpRingBuffer(kDir, "dumped", pszPosition, kRing, kRing + 10, sztSize);
}

TEST(DumpFiles, EveryCallAppendsAndARingIsFollowedAcrossItsEnd) {
  EmptyDebugDirectory();
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_DumpBuffer(kDir, "dumped", "one,", 4));
  std::string file = "one,";
  const std::tuple<size_t, size_t, const char *> aCases[] = {
      {2, 3, "234"}, {7, 3, "789"}, {8, 5, "89012"}, {10, 2, "01"}, {9, 22, "9012345678901234567890"}};
  for (const auto &[sztStart, sztSize, pszAppended] : aCases) {
    EXPECT_EQ(ZE_KEST_OK, DumpRing(kRing + sztStart, sztSize));
    EXPECT_EQ(file += pszAppended, ReadFile(kPath));
  }
  EXPECT_THAT(capture.Reports(), IsEmpty());
}

TEST(DumpFiles, ABadArgumentIsRefusedAndWritesNothing) {
  EmptyDebugDirectory();
  const ReportCapture capture;
  const char *pszEnd = kRing + 10;
  for (const uint32_t u32Result : {
           ze_kest_Utility_DumpBuffer(nullptr, "dumped", kRing, 1),
           ze_kest_Utility_DumpBuffer(kDir, nullptr, kRing, 1),
           ze_kest_Utility_DumpBuffer(kDir, "dumped", nullptr, 1),
           ze_kest_Utility_DumpBuffer(kDir, "dumped", kRing, 0),
           ze_kest_Utility_DumpRingBuffer(nullptr, "dumped", kRing, kRing, pszEnd, 1),
           ze_kest_Utility_DumpRingBuffer(kDir, nullptr, kRing, kRing, pszEnd, 1),
           ze_kest_Utility_DumpRingBuffer(kDir, "dumped", nullptr, kRing, pszEnd, 1),
           ze_kest_Utility_DumpRingBuffer(kDir, "dumped", kRing, nullptr, pszEnd, 1),
           ze_kest_Utility_DumpRingBuffer(kDir, "dumped", kRing, kRing, nullptr, 1),
           DumpRing(kRing, 0),
           ze_kest_Utility_DumpRingBuffer(kDir, "dumped", kRing, kRing, kRing, 1),
           DumpRing(pszEnd + 1, 1),
           ze_kest_Utility_DumpRingBuffer(kDir, "dumped", kRing, kRing + 1, pszEnd, 1),
       }) {
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, u32Result);
  }
  EXPECT_EQ((Texts{"pszFilePath is NULL.\n", "pszFileName is NULL.\n", "pszBuffer is NULL.\n",
                   "Invalid parameter: sztSize!\n", "pszFilePath is NULL.\n", "pszFileName is NULL.\n",
                   "pszBuffer is NULL.\n", "pszBufferStart is NULL.\n", "pszBufferEnd is NULL.\n",
                   "Invalid parameter: sztSize!\n", "Invalid parameter: pszBufferEnd!\n",
                   "Invalid parameter: pszBuffer!\n", "Invalid parameter: pszBuffer!\n"}),
            capture.Texts("<ERR>"));
  EXPECT_FALSE(std::filesystem::exists(kPath));
}

TEST(DumpFiles, AFileThatFailsIsReportedAndNoFailure) {
  const ReportCapture capture;
  const std::string longName(200, 'n');
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_DumpBuffer("/no/such/directory", "dumped", kRing, 1));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_DumpBuffer("/dev", "full", kRing, 1));
  EXPECT_EQ((Texts{"Err! fopen failed!\n", "Error! Fail to fflush()!\n"}), capture.Texts("<ERR>"));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_DumpBuffer(kDir, longName.c_str(), kRing, 1));
  EXPECT_EQ("0", ReadFile((kDir + ("/" + longName)).substr(0, 127)));
}

}  // namespace
}  // namespace kest::test
