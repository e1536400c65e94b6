// SPDX-License-Identifier: Apache-2.0
// The state of the whole audio path in one block.
#pragma once

namespace kest {

// Prints what the kind of every registered filter can tell. Queries the filters with the debug mutex held.
void _ZE_KEST_Debug_PrintStatusInfo();

}  // namespace kest
