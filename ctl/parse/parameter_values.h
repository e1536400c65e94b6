// SPDX-License-Identifier: Apache-2.0
// A filter's answer to "get": lines such as "Decoder_13 Volume Gain = -6 dB (-144 to 53)".
#pragma once

#include <string>
#include <vector>

#include "ctl/model/parameter_value.h"

namespace kest::ctl {

// The lines that are about this filter.
std::vector<ParameterValue> ParseParameterValues(const std::vector<std::string> &lines,
                                                 const std::string &pipeline, const std::string &filter);

}  // namespace kest::ctl
