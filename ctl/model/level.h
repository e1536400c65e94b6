// SPDX-License-Identifier: Apache-2.0
// The levels of the log, by the names that kest_log_level takes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kest::ctl {

struct Level {
  std::string_view name;
  uint32_t number;
};

// From silent to verbose; sync and hdmi report like err.
constexpr std::array<Level, 8> kLevels = {{{"none", 1},
                                           {"err", 32},
                                           {"sync", 33},
                                           {"hdmi", 34},
                                           {"wrn", 48},
                                           {"info", 64},
                                           {"trace", 80},
                                           {"all", 240}}};
constexpr uint32_t kErrLevel = 32;

inline const Level *FindLevel(std::string_view name) {
  for (const Level &level : kLevels) {
    if (level.name == name) return &level;
  }
  return nullptr;
}

inline const Level *FindLevel(uint32_t number) {
  for (const Level &level : kLevels) {
    if (level.number == number) return &level;
  }
  return nullptr;
}

}  // namespace kest::ctl
