// SPDX-License-Identifier: Apache-2.0
// Rows of a kind's parameter table, made from member functions of its class.
#pragma once

#include <cstring>

#include "player/framework/filter.h"

namespace kest::player {

template <typename Member>
struct ClassOfMember;
template <typename Member, typename Class>
struct ClassOfMember<Member Class::*> {
  using Type = Class;
};
template <auto kMember>
using ClassOf = typename ClassOfMember<decltype(kMember)>::Type;

template <typename Value>
void PutValue(void *data, Value value) {
  std::memcpy(data, &value, sizeof(value));
}

template <typename Value, auto kGet>
constexpr Parameter ReadOnly(const char *name, const char *description, const ParameterRange &range) {
  const auto get = [](const Filter &filter, uint32_t, void *data) {
    PutValue(data, static_cast<Value>((static_cast<const ClassOf<kGet> &>(filter).*kGet)()));
  };
  return {name, description, range, sizeof(Value), get, nullptr};
}

template <typename Value, auto kGet, auto kSet>
constexpr Parameter Settable(const char *name, const char *description, const ParameterRange &range) {
  Parameter parameter = ReadOnly<Value, kGet>(name, description, range);
  parameter.set = [](Filter &filter, uint32_t, const void *data) {
    Value value{};
    std::memcpy(&value, data, sizeof(value));
    (static_cast<ClassOf<kSet> &>(filter).*kSet)(value);
  };
  return parameter;
}

// A value that never changes in this player.
template <auto kValue>
constexpr Parameter Fixed(const char *name, const char *description) {
  const auto get = [](const Filter &, uint32_t, void *data) { PutValue(data, kValue); };
  return {name, description, {"", kValue, kValue, 0}, sizeof(decltype(kValue)), get, nullptr};
}

}  // namespace kest::player
