// SPDX-License-Identifier: Apache-2.0
// Parameters in words, from the rows of their table.
#pragma once

#include <cstdint>
#include <string>

#include "player/framework/filter_kind.h"

namespace kest::player {

// 205 with one decimal is "20.5".
std::string NumberText(int64_t number, uint32_t decimals);
// "-60.0 to 0.0"
std::string RangeText(const ParameterRange &range);

// "Gain = -6 dB (-144 to 53)", "OkFrmCnt = 380 (read only)"
std::string ParameterText(const Filter &filter, const Parameter &parameter);

// What it is, with unit and range: "of every channel, dB, -144 to 53".
std::string DescriptionOf(const Parameter &parameter);

}  // namespace kest::player
