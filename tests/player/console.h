// SPDX-License-Identifier: Apache-2.0
// The pipe and the log of a running player, as an engineer at a shell uses them.
#pragma once

#include <string>

namespace kest::test {

// Types a command and gives what it adds to the log, with every run of blanks made one.
std::string Ask(const std::string &command);

}  // namespace kest::test
