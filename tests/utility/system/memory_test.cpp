// SPDX-License-Identifier: Apache-2.0
#include "tests/support/library_test.h"

using kest::test::ReportCapture;

TEST(Memory, ABlockIsAllocatedAndReleasedAndItsPointerCleared) {
  void *pv = nullptr;
  ASSERT_EQ(ZE_KEST_OK, ze_kest_Utility_MemoryAlloc(&pv, 16));
  pv = ze_kest_Utility_MemoryReAlloc(pv, 4096);
  ASSERT_NE(nullptr, pv);
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_MemoryFree(&pv));
  EXPECT_EQ(nullptr, pv);
}

TEST(Memory, AnImpossibleRequestIsReportedAndLeavesNull) {
  const ReportCapture capture;
  int s32Anything = 0;
  for (const size_t sztSize : {size_t{0}, SIZE_MAX - 64}) {
    void *pv = &s32Anything;
    EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Utility_MemoryAlloc(&pv, sztSize));
    EXPECT_EQ(nullptr, pv);
    EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Utility_MemoryFree(&pv));
  }
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_MemoryAlloc(nullptr, 1));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_MemoryFree(nullptr));
  EXPECT_EQ(
      (std::vector<std::string>{"Error! MALLOC error! \n", "Error! FREE error! \n", "Error! MALLOC error! \n",
                                "Error! FREE error! \n", "ppvOut is NULL.\n", "ppvInOut is NULL.\n"}),
      capture.Texts("<ERR>"));
}
