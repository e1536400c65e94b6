// SPDX-License-Identifier: Apache-2.0
// What a configuration file can say about a filter.
#pragma once

#include "player/config/json_value.h"
#include "player/layout.h"

namespace kest::player {

// The filter that the value is named after, with the settings given in the value and defaults for the others.
// Throws PlayerError for an unknown filter, an unknown or missing setting, or a wrong value.
FilterLayout ReadFilter(const JsonValue &value);

}  // namespace kest::player
