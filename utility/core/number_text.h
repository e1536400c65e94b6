// SPDX-License-Identifier: Apache-2.0
// Parses numbers with the limits of the 32-bit target, on every host.
#pragma once

#include <cstdint>
#include <cstdlib>

namespace kest {

// Like strtol on the target: saturates at INT32_MIN and INT32_MAX.
inline int32_t ParseS32(const char *pszText, int s32Base = 10) {
  const long long s64Value = strtoll(pszText, nullptr, s32Base);
  if (s64Value > INT32_MAX) return INT32_MAX;
  if (s64Value < INT32_MIN) return INT32_MIN;
  return static_cast<int32_t>(s64Value);
}

// Like strtoul on the target: saturates at UINT32_MAX, and a negative number wraps.
inline uint32_t ParseU32(const char *pszText) {
  const long long s64Value = strtoll(pszText, nullptr, 10);
  if (s64Value > UINT32_MAX || s64Value < -static_cast<long long>(UINT32_MAX)) return UINT32_MAX;
  return static_cast<uint32_t>(s64Value);
}

// A saturated result cannot be told from the limit itself, so the limits count as out of range too.
inline bool IsOutOfRange(int32_t s32Value) {
  return s32Value == INT32_MAX || s32Value == INT32_MIN;
}

}  // namespace kest
