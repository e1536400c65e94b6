// SPDX-License-Identifier: Apache-2.0
// The sink's short audio descriptor block.
#pragma once

namespace kest {

// Prints what the sink supports.
void _ZE_KEST_Debug_PrintSadInfo();

}  // namespace kest
