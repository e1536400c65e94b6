// SPDX-License-Identifier: Apache-2.0
// 10^(dB/20) in Q23: exp(y) with y = dB/20 * ln 10, as 2^k * exp(r) with |r| at most half of ln 2.
#include <cstdlib>

#include "ze_kest/utility.h"

namespace {

constexpr int kFraction = 23;
constexpr int64_t kOne = int64_t{1} << kFraction;
constexpr int64_t kTwenty = 167772170;  // 20 in Q23 plus 20 / 2; the dB value gets the same rounding term
constexpr int64_t kLn10 = 19315484;
constexpr int64_t kLog2E = 12102203;
constexpr int64_t kLn2 = 5814540;

constexpr int64_t Multiply(int64_t s64A, int64_t s64B) {
  return (s64A * s64B) >> kFraction;
}

// y / ln 2 rounded to a whole number.
int64_t WholePowerOfTwo(int64_t s64Y) {
  const int64_t s64Rounded = Multiply(std::abs(s64Y), kLog2E) + kOne / 2;
  const int64_t s64Whole = s64Rounded & ~(kOne - 1);
  return s64Y < 0 ? -s64Whole : s64Whole;
}

// exp(r) = 1 + 2r / (2 - (r - p)), where p is a polynomial in r squared.
int64_t Exponential(int64_t s64R) {
  const int64_t s64S = Multiply(s64R, s64R);
  int64_t s64P = Multiply(s64S, -13) + 554;
  s64P = Multiply(s64P, s64S) - 23301;
  s64P = Multiply(s64P, s64S) + 1398101;
  s64P = Multiply(s64P, s64S);
  const int64_t s64Divisor = s64P - s64R + 2 * kOne;
  return 2 * s64R * kOne / s64Divisor + kOne;
}

// Zero for a shift of 32 or more places, in either direction.
uint64_t PowerOfTwo(int64_t s64Exponent) {
  if (std::abs(s64Exponent) >= 32) return 0;
  constexpr auto kOneUnsigned = static_cast<uint64_t>(kOne);
  return s64Exponent >= 0 ? kOneUnsigned << s64Exponent : kOneUnsigned >> -s64Exponent;
}

}  // namespace

uint32_t ze_kest_Utility_FixedPtDb(int s32Db) {
  const auto u32Magnitude = s32Db < 0 ? 0u - static_cast<uint32_t>(s32Db) : static_cast<uint32_t>(s32Db);
  const auto s32Q23 = static_cast<int32_t>((static_cast<uint32_t>(s32Db) << kFraction) + u32Magnitude / 2);
  const int64_t s64T = s32Q23 * kOne / kTwenty;
  if (s64T == 0) return static_cast<uint32_t>(kOne);
  const int64_t s64Y = Multiply(s64T, kLn10);
  if (s64Y == 0) return static_cast<uint32_t>(kOne);

  const int64_t s64K = WholePowerOfTwo(s64Y);
  const auto u64E = static_cast<uint64_t>(Exponential(s64Y - Multiply(s64K, kLn2)));
  return static_cast<uint32_t>((PowerOfTwo(s64K >> kFraction) * u64E) >> kFraction);
}
