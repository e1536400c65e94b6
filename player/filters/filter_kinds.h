// SPDX-License-Identifier: Apache-2.0
// The kinds of filters that a run can use.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "player/framework/filter_kind.h"

namespace kest::player {

// A kind that is found at run time joins the list; it must outlive all its filters.
using FilterKinds = std::vector<const FilterKind *>;

FilterKinds BuiltInKinds();

// nullptr when no kind has the name.
const FilterKind *FindKind(const FilterKinds &kinds, std::string_view name);

}  // namespace kest::player
