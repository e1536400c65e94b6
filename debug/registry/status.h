// SPDX-License-Identifier: Apache-2.0
// The state of the whole audio path in one block.
#pragma once

namespace kest {

// Asks every registered filter, with the mutex held, for what its kind can tell.
void _ZE_KEST_Debug_PrintStatusInfo();

}  // namespace kest
