// SPDX-License-Identifier: Apache-2.0
// A filter as a layout wants it: its kind and the settings that are given for it.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "player/framework/filter_kind.h"

namespace kest::player {

// A value for a parameter that is known only once the filter exists.
struct GivenParameter {
  std::string name;
  std::string value;  // a decimal number, in the parameter's unit
  std::string place;  // where it was given, for error messages
};

struct FilterLayout {
  const FilterKind *kind;
  std::map<std::string, std::variant<int, std::string>, std::less<>> settings{};  // by the keys of the kind
  // Of a filter from a module.
  std::string name{};
  std::string config{};
  std::string directory{};  // that relative paths in config start from
  std::vector<GivenParameter> parameters{};

  // A setting that is not given is 0, or empty.
  [[nodiscard]] int WholeNumber(std::string_view key) const { return Value<int>(key); }
  [[nodiscard]] std::string FileName(std::string_view key) const { return Value<std::string>(key); }
  [[nodiscard]] std::string Text(std::string_view key) const { return Value<std::string>(key); }

 private:
  template <typename Type>
  [[nodiscard]] Type Value(std::string_view key) const {
    const auto setting = settings.find(key);
    return setting == settings.end() ? Type{} : std::get<Type>(setting->second);
  }
};

}  // namespace kest::player
