// SPDX-License-Identifier: Apache-2.0
// The answer to kest_debug_list=parameter: lines such as "'Gain', 'Volume: dB, -144 to 53', '4'".
#pragma once

#include <string>
#include <vector>

#include "ctl/model/parameter.h"

namespace kest::ctl {

std::vector<Parameter> ParseParameters(const std::vector<std::string> &lines);

}  // namespace kest::ctl
