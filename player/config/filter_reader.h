// SPDX-License-Identifier: Apache-2.0
// What a configuration file says about a filter.
#pragma once

#include <filesystem>

#include "player/config/json_value.h"
#include "player/filters/filter_kinds.h"
#include "player/framework/filter_layout.h"

namespace kest::player {

// The filter of the kind that the value is named after, or of the module that it names, with the settings
// given in the value; names of files that are relative start at the directory. Throws PlayerError for an
// unknown kind, an unknown or missing setting, a wrong value, or a module that cannot be used.
FilterLayout ReadFilter(const JsonValue &value, const FilterKinds &kinds,
                        const std::filesystem::path &directory);

}  // namespace kest::player
