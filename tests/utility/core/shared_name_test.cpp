// SPDX-License-Identifier: Apache-2.0
#include "utility/core/shared_name.h"

#include <atomic>
#include <thread>

#include "tests/support/library_test.h"

TEST(SharedName, IsTerminatedWithinItsFieldAtEveryMomentOfAWrite) {
  kest::NameField szField = "";
  std::atomic<bool> bDone{false};
  std::thread reader([&] {
    while (!bDone) {
      EXPECT_EQ('\0', kest::Load(szField[ZE_KEST_NAME_SIZE - 1]));
      EXPECT_EQ(std::string::npos, std::string(kest::NameCopy(szField).c_str()).find_first_not_of("lsx"));
    }
  });
  for (int i = 0; i < 5000; ++i) {
    kest::StoreName("Test", szField, std::string(100, 'l').c_str());
    kest::StoreName("Test", szField, "sx");
  }
  bDone = true;
  reader.join();
  EXPECT_STREQ("sx", szField);
}

TEST(SharedName, StaysWhenThereIsNothingToCopyAndTheFunctionReportsIt) {
  const kest::test::ReportCapture capture;
  kest::NameField szField = "old";
  kest::StoreName("Test", szField, nullptr);
  EXPECT_STREQ("old", szField);
  ASSERT_EQ(1u, capture.Reports().size());
  EXPECT_EQ("Test", capture.Reports()[0].function);
  EXPECT_EQ("Err! Strncpy failed!\n", capture.Reports()[0].text);
}
