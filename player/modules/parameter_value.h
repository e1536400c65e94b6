// SPDX-License-Identifier: Apache-2.0
// Values of a module's parameters as users write them: decimal numbers in the parameter's unit.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "ze_kest/module.h"

#include "player/framework/filter_kind.h"

namespace kest::player {

ParameterRange RangeOf(const ZE_KEST_ModuleParameter_s &parameter);

// "-2.5" with one decimal is -25. Nothing unless the text is a number with at most so many decimals, within
// the limits.
std::optional<int32_t> ParseValue(std::string_view text, const ZE_KEST_ModuleParameter_s &parameter);

}  // namespace kest::player
