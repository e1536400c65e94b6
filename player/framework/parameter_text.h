// SPDX-License-Identifier: Apache-2.0
// Parameters in words, from the rows of their table.
#pragma once

#include <string>

#include "player/framework/filter_kind.h"

namespace kest::player {

// "Gain = -6 dB (-144 to 53)", "OkFrmCnt = 380 (read only)"
std::string ParameterText(const Filter &filter, const Parameter &parameter);

// What it is, with unit and range: "of every channel, dB, -144 to 53".
std::string DescriptionOf(const Parameter &parameter);

}  // namespace kest::player
