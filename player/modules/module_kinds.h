// SPDX-License-Identifier: Apache-2.0
// Kinds of filters that come from modules.
#pragma once

#include <string>
#include <string_view>

#include "player/filters/filter_kinds.h"
#include "player/modules/module.h"

namespace kest::player {

struct ModuleFilterKind : FilterKind {
  const ModuleKind *module;
};

// The kind of the name from the module, or its only one for ""; exists for the rest of the process. Throws
// ModuleError, also when a kind of the module has the name of one of these.
const ModuleFilterKind &LoadKind(const FilterKinds &kinds, const std::string &path, std::string_view name);

}  // namespace kest::player
