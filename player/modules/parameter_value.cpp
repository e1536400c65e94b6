// SPDX-License-Identifier: Apache-2.0
#include "player/modules/parameter_value.h"

#include <charconv>
#include <string>

namespace kest::player {

ParameterRange RangeOf(const ZE_KEST_ModuleParameter_s &parameter) {
  return {parameter.pszUnit, parameter.s32Least, parameter.s32Most, parameter.u32Decimals};
}

std::optional<int32_t> ParseValue(std::string_view text, const ZE_KEST_ModuleParameter_s &parameter) {
  const size_t point = text.find('.');
  const std::string_view whole = text.substr(0, point);
  const std::string_view fraction = point == std::string_view::npos ? "" : text.substr(point + 1);
  const bool hasDigits =
      !whole.empty() && whole != "-" && (point == std::string_view::npos || !fraction.empty());
  if (!hasDigits || fraction.size() > parameter.u32Decimals) return std::nullopt;

  std::string digits(whole);
  digits += fraction;
  digits.append(parameter.u32Decimals - fraction.size(), '0');
  int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  if (value < parameter.s32Least || value > parameter.s32Most) return std::nullopt;
  return static_cast<int32_t>(value);
}

}  // namespace kest::player
