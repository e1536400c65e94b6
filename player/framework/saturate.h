// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace kest::player {

// The nearest value that the sample type can hold.
template <typename Sample, typename Value>
constexpr Sample Saturate(Value value) {
  return static_cast<Sample>(
      std::clamp<Value>(value, std::numeric_limits<Sample>::min(), std::numeric_limits<Sample>::max()));
}

}  // namespace kest::player
