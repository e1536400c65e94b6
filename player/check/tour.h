// SPDX-License-Identifier: Apache-2.0
// Streams through every kind of shape and amount, for what must hold in every turn.
#pragma once

#include <string>

#include "player/check/finding.h"
#include "player/check/rig.h"

namespace kest::player {

// The first of the faults (ZE_KEST_HarnessFault_e) in words, "" without one.
std::string FaultsOfTour(const Subject &subject, uint32_t mask, uint32_t guard);

Finding JudgeTour(const Subject &subject, uint32_t mask);

}  // namespace kest::player
