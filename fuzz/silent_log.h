// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace kest::fuzz {

// Switches every level on and drops what reaches the Android log: reports are put together, nobody reads
// them.
void SilenceLog();

}  // namespace kest::fuzz
