// SPDX-License-Identifier: Apache-2.0
// Whether the debug layer is up.
#pragma once

namespace kest {

// True between ze_kest_Debug_Init and ze_kest_Debug_DeInit. Callable from any thread.
bool IsStarted();

void SetStarted(bool bStarted);

}  // namespace kest
