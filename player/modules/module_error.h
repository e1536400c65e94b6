// SPDX-License-Identifier: Apache-2.0
// A module that cannot be used: which file, which step, why.
#pragma once

#include <string>

#include "player/base/player_error.h"

namespace kest::player {

class ModuleError : public PlayerError {
 public:
  // "PATH: why"
  ModuleError(const std::string &path, const std::string &why) : PlayerError(path + ": " + why) {}
};

}  // namespace kest::player
