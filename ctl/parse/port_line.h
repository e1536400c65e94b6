// SPDX-License-Identifier: Apache-2.0
// "[pcm  level] 5218340213 Decoder_13     :Volume            in0:cnt:352       ,0 ,0 ,0  l:256       ,..."
#pragma once

#include <optional>
#include <string_view>

#include "ctl/model/port_line.h"

namespace kest::ctl {

// Empty for other lines. A port at which the line was cut is left out.
std::optional<PortLine> ParsePortLine(std::string_view line);

}  // namespace kest::ctl
