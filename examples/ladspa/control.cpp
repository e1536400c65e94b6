// SPDX-License-Identifier: Apache-2.0
#include "control.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace ladspa_host {
namespace {

constexpr double kNoLimit = 1e6;
constexpr double kLargestNumber = 1e9;
constexpr uint32_t kUsualDecimals = 3;
constexpr uint32_t kMostDecimals = 6;

std::string Mangled(const std::string &text) {
  std::string name;
  for (const char c : text) {
    const bool isKept = std::isalnum(static_cast<unsigned char>(c)) != 0;
    if (isKept || (!name.empty() && name.back() != '_')) name += isKept ? c : '_';
  }
  while (!name.empty() && name.back() == '_') {
    name.pop_back();
  }
  // Leaves room for a number that tells it apart from others.
  return name.empty() ? "Control" : name.substr(0, ZE_KEST_NAME_SIZE - 8);
}

// "Gain (dB)" has the unit dB.
std::string UnitOf(const std::string &text) {
  const size_t open = text.rfind('(');
  const size_t close = text.rfind(')');
  const bool hasUnit = open != std::string::npos && close == text.size() - 1 && open < close;
  return hasUnit ? text.substr(open + 1, close - open - 1) : "";
}

}  // namespace

Control::Control(const LADSPA_Descriptor &plugin, unsigned long port, uint32_t sampleRate)
    : port_(port),
      isInput_(LADSPA_IS_PORT_INPUT(plugin.PortDescriptors[port])),
      unit_(UnitOf(plugin.PortNames[port])) {
  const std::string text = plugin.PortNames[port];
  name_ = Mangled(unit_.empty() ? text : text.substr(0, text.rfind('(')));
  const LADSPA_PortRangeHint &hint = plugin.PortRangeHints[port];
  FindLimits(hint, sampleRate);  // before the default, which lies between them
  const double preset = DefaultOf(hint.HintDescriptor);
  default_ = std::clamp(preset, least_, most_);
  value_ = ToNumber(default_);
  data_ = static_cast<LADSPA_Data>(default_);
}

void Control::FindLimits(const LADSPA_PortRangeHint &hint, uint32_t sampleRate) {
  const LADSPA_PortRangeHintDescriptor kind = hint.HintDescriptor;
  const double unit = LADSPA_IS_HINT_SAMPLE_RATE(kind) ? sampleRate : 1.0;
  least_ = LADSPA_IS_HINT_BOUNDED_BELOW(kind) ? hint.LowerBound * unit : -kNoLimit;
  most_ = LADSPA_IS_HINT_BOUNDED_ABOVE(kind) ? hint.UpperBound * unit : kNoLimit;
  if (LADSPA_IS_HINT_TOGGLED(kind)) {
    least_ = 0.0;
    most_ = 1.0;
  }
  least_ = std::clamp(least_, -kLargestNumber, kLargestNumber);
  most_ = std::clamp(most_, least_, kLargestNumber);
  const double largest = std::max(std::abs(least_), std::abs(most_));
  if (!LADSPA_IS_HINT_INTEGER(kind) && !LADSPA_IS_HINT_TOGGLED(kind)) {
    decimals_ = largest <= 1.0 ? kMostDecimals : kUsualDecimals;
  }
  while (decimals_ > 0 && largest * std::pow(10.0, decimals_) > kLargestNumber) {
    --decimals_;
  }
  scale_ = std::pow(10.0, decimals_);
}

double Control::DefaultOf(LADSPA_PortRangeHintDescriptor hint) const {
  const auto between = [&](double share) {
    const bool isLogarithmic = LADSPA_IS_HINT_LOGARITHMIC(hint) && least_ > 0.0;
    return isLogarithmic ? std::exp(std::log(least_) * (1.0 - share) + std::log(most_) * share)
                         : least_ * (1.0 - share) + most_ * share;
  };
  switch (hint & LADSPA_HINT_DEFAULT_MASK) {
    case LADSPA_HINT_DEFAULT_MINIMUM:
      return least_;
    case LADSPA_HINT_DEFAULT_LOW:
      return between(0.25);
    case LADSPA_HINT_DEFAULT_MIDDLE:
      return between(0.5);
    case LADSPA_HINT_DEFAULT_HIGH:
      return between(0.75);
    case LADSPA_HINT_DEFAULT_MAXIMUM:
      return most_;
    case LADSPA_HINT_DEFAULT_1:
      return 1.0;
    case LADSPA_HINT_DEFAULT_100:
      return 100.0;
    case LADSPA_HINT_DEFAULT_440:
      return 440.0;
    default:
      return 0.0;
  }
}

ZE_KEST_ModuleParameter_s Control::Describe() const {
  ZE_KEST_ModuleParameter_s parameter{};
  parameter.u32Size = sizeof(parameter);
  parameter.u32Flags = isInput_ ? 0u : uint32_t{ZE_KEST_MODULE_READ_ONLY};
  parameter.pszName = name_.c_str();
  parameter.pszDescription = "";
  parameter.pszUnit = unit_.c_str();
  parameter.u32Decimals = decimals_;
  parameter.s32Least = ToNumber(least_);
  parameter.s32Most = ToNumber(most_);
  parameter.s32Default = ToNumber(default_);
  return parameter;
}

void Control::ToPlugin() {
  data_ = static_cast<LADSPA_Data>(Get() / scale_);
}

void Control::FromPlugin() {
  Set(std::isfinite(data_) ? ToNumber(data_) : 0);
}

int32_t Control::ToNumber(double value) const {
  return static_cast<int32_t>(
      std::lrint(std::clamp(value * scale_, -2 * kLargestNumber, 2 * kLargestNumber)));
}

}  // namespace ladspa_host
