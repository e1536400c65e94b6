// SPDX-License-Identifier: Apache-2.0
// What the player can do, for the library's lists.
#pragma once

namespace kest::player {

// Hands the library the parameters of every kind of filter and the formats that the output takes.
void AnnounceCapabilities();

}  // namespace kest::player
