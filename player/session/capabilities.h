// SPDX-License-Identifier: Apache-2.0
// Tells the library what the player can do, for its lists.
#pragma once

#include "player/filters/filter_kinds.h"

namespace kest::player {

// Passes the library the parameters of the kinds of filters and the formats that the output takes.
void AnnounceCapabilities(const FilterKinds &kinds);

}  // namespace kest::player
