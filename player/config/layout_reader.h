// SPDX-License-Identifier: Apache-2.0
// Configuration files: a JSON object of pipelines; each is an object of filters; each of these an object of
// settings.
#pragma once

#include <string>

#include "player/config/layout.h"

namespace kest::player {

// Relative paths in the file start at its directory. Throws a PlayerError that says where the file is wrong
// and what is needed there.
Layout ReadLayout(const std::string &path, const FilterKinds &kinds);

}  // namespace kest::player
