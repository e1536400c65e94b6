// SPDX-License-Identifier: Apache-2.0
// For commands that print while they go on.
#pragma once

#include <string>

namespace kest::ctl {

// Of the clock on the wall: "06:55:44".
std::string TimeOfDay();
// Hands on what was printed. Throws CtlError, with exit code 0, when nobody reads it any more.
void FlushOutput();

}  // namespace kest::ctl
