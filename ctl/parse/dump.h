// SPDX-License-Identifier: Apache-2.0
// The answer to the lines that switch dumps on.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kest::ctl {

// The number of the run that begins on a side of the filters, which is part of its files' names.
std::optional<unsigned> ParseDumpRun(const std::vector<std::string> &lines, bool isInput);

}  // namespace kest::ctl
