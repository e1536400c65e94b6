// SPDX-License-Identifier: Apache-2.0
// "[PERF_EVENT][50][Decoder_13:Volume][MIPS=1.23][MCPS=2.34][CPU%=0.56%](HwInstr:...)"
#pragma once

#include <optional>
#include <string_view>

#include "ctl/model/perf_line.h"

namespace kest::ctl {

// Empty for other lines.
std::optional<PerfLine> ParsePerfLine(std::string_view line);

}  // namespace kest::ctl
