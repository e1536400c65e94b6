// SPDX-License-Identifier: Apache-2.0
// The answer to kest_print_current_shm.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ctl/model/settings.h"

namespace kest::ctl {

// Empty when a line is missing.
std::optional<ProcessSettings> ParseSettings(const std::vector<std::string> &lines);

}  // namespace kest::ctl
