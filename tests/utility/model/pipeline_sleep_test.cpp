// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "tests/support/library_test.h"

using kest::test::ReportCapture;

TEST(PipelineSleep, TheHigherPriorityDecidesAndTheFirstWakeUpStays) {
  ZE_KEST_Pipeline_s stPipeline = {};
  ZE_KEST_Filter_s stFilter = {};
  stFilter.pstParentPipeline = &stPipeline;
  const auto merge = [&](uint32_t u32Priority, int32_t s32Time, uint32_t u32WakeUp) {
    stFilter.u32SleepPriority = u32Priority;
    stFilter.s32SleepTime = s32Time;
    stFilter.u32WakeUp = u32WakeUp;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_UpdatePipelineSleepConfiguration(&stFilter));
    return std::vector<int64_t>{stPipeline.u32SleepPriority, stPipeline.s32SleepTime, stPipeline.u32WakeUp};
  };
  using Settings = std::vector<int64_t>;
  EXPECT_EQ((Settings{0, 0, 0}), merge(0, 9, 0));   // equal, but zero: not a priority
  EXPECT_EQ((Settings{2, 5, 7}), merge(2, 5, 7));   // higher: takes all
  EXPECT_EQ((Settings{2, 4, 7}), merge(2, 4, 8));   // equal: takes the time
  EXPECT_EQ((Settings{2, 4, 7}), merge(2, -1, 8));  // equal with a negative time
  EXPECT_EQ((Settings{2, 4, 7}), merge(1, 9, 8));   // lower
  EXPECT_EQ((Settings{3, 4, 7}), merge(3, 0, 8));   // higher with no time of its own

  const ReportCapture capture;
  stFilter.pstParentPipeline = nullptr;
  strcpy(stFilter.szName, "Volume");
  EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Utility_UpdatePipelineSleepConfiguration(&stFilter));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_UpdatePipelineSleepConfiguration(nullptr));
  EXPECT_EQ((std::vector<std::string>{"Error (0x00000003)! Pipeline should not be NULL in filter 'Volume'!\n",
                                      "pstFilter is NULL.\n"}),
            capture.Texts("<ERR>"));
}
