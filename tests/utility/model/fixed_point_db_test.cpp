// SPDX-License-Identifier: Apache-2.0
#include <cmath>

#include "tests/support/library_test.h"

TEST(FixedPointDb, IsExactToTheBitAndTheGainOfEveryWholeDecibelThatFits) {
  const std::pair<int, uint32_t> aGains[] = {
      {1, 9412171u},  {-1, 7476355u}, {6, 16737472u},    {-6, 4204263u},    {20, 83886080u},
      {-20, 838861u}, {-40, 83886u},  {48, 2107123200u}, {52, 3339564544u}, {54, 4204262912u},
      {-120, 8u},     {-138, 1u},     {-200, 0u},        {-255, 0u},        {0, 0x800000u}};
  for (const auto &[s32Db, u32Gain] : aGains)
    EXPECT_EQ(u32Gain, ze_kest_Utility_FixedPtDb(s32Db)) << s32Db;
  for (int s32Db = -120; s32Db <= 54; ++s32Db) {
    const double f64Exact = std::pow(10.0, s32Db / 20.0) * 0x800000;
    EXPECT_NEAR(f64Exact, ze_kest_Utility_FixedPtDb(s32Db), f64Exact * 2e-5 + 2) << s32Db;
  }
}
