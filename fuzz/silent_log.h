// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace kest::fuzz {

// Switches every level on and drops what reaches the Android log: reports are formatted but not printed.
void SilenceLog();

}  // namespace kest::fuzz
