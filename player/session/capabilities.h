// SPDX-License-Identifier: Apache-2.0
// Tells the library what the player can do, for its lists.
#pragma once

#include <vector>

#include "player/filters/filter_kinds.h"
#include "player/framework/filter.h"

namespace kest::player {

// Passes the library the parameters of the kinds of filters, those that the filters of a run have beyond
// them, and the formats that the output takes. Not while a command could list them.
void AnnounceCapabilities(const FilterKinds &kinds, const std::vector<const Filter *> &filters);

}  // namespace kest::player
