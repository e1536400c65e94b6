// SPDX-License-Identifier: Apache-2.0
#include <ctime>

#include "tests/support/library_test.h"
#include "utility/core/monotonic_us.h"

using kest::test::ReportCapture;

namespace {

uint64_t Microseconds() {
  struct timespec st = {};
  clock_gettime(CLOCK_MONOTONIC, &st);
  return static_cast<uint64_t>(st.tv_sec) * 1000000 + static_cast<uint64_t>(st.tv_nsec) / 1000;
}

}  // namespace

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
}

TEST(Clock, MicrosecondsAreThoseOfTheMonotonicClock) {
  const uint64_t u64Before = Microseconds();
  const uint64_t u64Us = kest::MonotonicUs();
  EXPECT_GE(u64Us + 1, u64Before);  // the last nanoseconds may be rounded
  EXPECT_LE(u64Us, Microseconds() + 1);
}

TEST(Clock, ADelayWaitsAtLeastItsTime) {
  const uint64_t u64Before = Microseconds();
  ze_kest_Utility_DelayMs(20);
  EXPECT_GE(Microseconds(), u64Before + 20000);
}
