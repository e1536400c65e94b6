// SPDX-License-Identifier: Apache-2.0
// "ESC[1;31m26305 26308 [2023/06/01,01,0][11-22 03:25:18.867]<ZE3><ERR>ESC[0mFunction[162 ]: text"
#pragma once

#include <string_view>

#include "ctl/model/log_line.h"

namespace kest::ctl {

// A line without a whole prefix is a PRINT line with all of its text.
LogLine ParseLogLine(std::string_view text);

}  // namespace kest::ctl
