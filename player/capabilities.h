// SPDX-License-Identifier: Apache-2.0
// Tells the library what the player can do, for its lists.
#pragma once

namespace kest::player {

// Passes the library the parameters of every kind of filter and the formats that the output takes.
void AnnounceCapabilities();

}  // namespace kest::player
