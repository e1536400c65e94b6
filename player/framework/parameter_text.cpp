// SPDX-License-Identifier: Apache-2.0
#include "player/framework/parameter_text.h"

#include <cstring>

namespace kest::player {
namespace {

bool IsSettable(const Parameter &parameter) {
  return parameter.set != nullptr;
}

// The value's bytes with its sign in front of them.
int64_t NumberOf(const Filter &filter, const Parameter &parameter) {
  uint64_t bytes = 0;
  parameter.get(filter, parameter.index, &bytes);  // the least significant bytes come first
  const uint32_t unusedBits = 64 - 8 * parameter.size;
  const auto high = static_cast<int64_t>(bytes << unusedBits);
  return parameter.range.least < 0 ? high >> unusedBits : static_cast<int64_t>(bytes);
}

}  // namespace

std::string NumberText(int64_t number, uint32_t decimals) {
  const auto bits = static_cast<uint64_t>(number);
  std::string digits = std::to_string(number < 0 ? 0 - bits : bits);
  if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
  if (decimals > 0) digits.insert(digits.size() - decimals, ".");
  return (number < 0 ? "-" : "") + digits;
}

std::string RangeText(const ParameterRange &range) {
  return NumberText(range.least, range.decimals) + " to " + NumberText(range.most, range.decimals);
}

std::string ParameterText(const Filter &filter, const Parameter &parameter) {
  const ParameterRange &range = parameter.range;
  std::string text =
      std::string(parameter.name) + " = " + NumberText(NumberOf(filter, parameter), range.decimals);
  if (*range.unit != '\0') text += std::string(" ") + range.unit;
  return text + " (" + (IsSettable(parameter) ? RangeText(range) : "read only") + ")";
}

std::string DescriptionOf(const Parameter &parameter) {
  std::string text = parameter.description;
  if (*parameter.range.unit != '\0') text += std::string(", ") + parameter.range.unit;
  if (IsSettable(parameter)) text += ", " + RangeText(parameter.range);
  return text;
}

}  // namespace kest::player
