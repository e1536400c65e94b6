// SPDX-License-Identifier: Apache-2.0
// Values of a module's parameters as users write them: decimal numbers in the parameter's unit.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ze_kest/module.h"

namespace kest::player {

// -25 with one decimal is "-2.5".
std::string ValueText(int32_t value, uint32_t decimals);
// "-60.0 to 0.0"
std::string RangeText(const ZE_KEST_ModuleParameter_s &parameter);

// "-2.5" with one decimal is -25. Nothing unless the text is a number with at most so many decimals, within
// the limits.
std::optional<int32_t> ParseValue(std::string_view text, const ZE_KEST_ModuleParameter_s &parameter);

}  // namespace kest::player
