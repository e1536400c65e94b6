// SPDX-License-Identifier: Apache-2.0
// Whether the debug layer is up, and whether it is about to go.
#pragma once

namespace kest {

// True between ze_kest_Debug_Init and ze_kest_Debug_DeInit. Callable from any thread.
bool IsStarted();

void SetStarted(bool bStarted);

// True while ze_kest_Debug_DeInit ends the threads: what takes long gives up. Callable from any thread.
bool IsEnding();

void SetEnding(bool bEnding);

}  // namespace kest
