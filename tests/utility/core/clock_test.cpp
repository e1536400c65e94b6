// SPDX-License-Identifier: Apache-2.0
#include <ctime>

#include <gtest/gtest.h>

#include "ze_kest/utility.h"

#include "tests/support/report_capture.h"

using kest::test::ReportCapture;

TEST(Clock, ADeadlineLiesTheGivenTimeAheadWithNormalisedNanoseconds) {
  for (const uint64_t u64Us : {uint64_t{0}, uint64_t{999999}, uint64_t{5000000}, uint64_t{1999999}}) {
    struct timespec stBefore = {};
    struct timespec stDeadline = {};
    struct timespec stAfter = {};
    clock_gettime(CLOCK_MONOTONIC, &stBefore);
    ze_kest_Utility_MicrosecondToTimespec(&stDeadline, u64Us);
    clock_gettime(CLOCK_MONOTONIC, &stAfter);
    const auto nanoseconds = [](const struct timespec &st) { return st.tv_sec * 1000000000LL + st.tv_nsec; };
    EXPECT_LT(stDeadline.tv_nsec, 1000000000);
    EXPECT_GE(nanoseconds(stDeadline), nanoseconds(stBefore) + static_cast<long long>(u64Us) * 1000);
    EXPECT_LE(nanoseconds(stDeadline), nanoseconds(stAfter) + static_cast<long long>(u64Us) * 1000);
  }
  const ReportCapture capture;
  ze_kest_Utility_MicrosecondToTimespec(nullptr, 1);
  EXPECT_TRUE(capture.Has("<ERR>", "pstOut is NULL."));
  ze_kest_Utility_DelayMs(0);
}
