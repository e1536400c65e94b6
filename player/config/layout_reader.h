// SPDX-License-Identifier: Apache-2.0
// Configuration files: JSON objects of pipelines, each an object of filters, each an object of settings.
#pragma once

#include <string>

#include "player/layout.h"

namespace kest::player {

// Paths in the file count from its directory. Throws PlayerError, which says where the file is wrong and what
// is needed there.
Layout ReadLayout(const std::string &path);

}  // namespace kest::player
