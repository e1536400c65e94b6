// SPDX-License-Identifier: Apache-2.0
// Numbers on the command line.
#pragma once

#include <chrono>
#include <cstdint>

#include "ctl/commands/command.h"

namespace kest::ctl {

// A positive number of seconds, which may have decimals; otherwise when the option is not given.
std::chrono::milliseconds SecondsOf(const Arguments &arguments, const char *option,
                                    std::chrono::milliseconds otherwise);
// A whole number from least on.
int64_t CountOf(const Arguments &arguments, const char *option, int64_t least, int64_t otherwise);

}  // namespace kest::ctl
