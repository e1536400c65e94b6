// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "ctl/channel/channel.h"

namespace kest::ctl {

// Removes what the process has written for a command that is over, however it ended. A file that stays is a
// warning.
void RemoveWrittenFiles(Channel &channel, const std::vector<std::string> &paths) noexcept;

}  // namespace kest::ctl
