// SPDX-License-Identifier: Apache-2.0
// The parameters of an instance on the bench.
#pragma once

#include <vector>

#include "player/check/rig.h"

namespace kest::player {

// As the instance gives them, up to a bound; not checked.
std::vector<ZE_KEST_ModuleParameter_s> ParametersOf(const Rig &rig);
bool CanBeSet(const ZE_KEST_ModuleParameter_s &parameter);
// A value within the limits; random.
int32_t RandomValue(const ZE_KEST_ModuleParameter_s &parameter, uint32_t &seed);

}  // namespace kest::player
