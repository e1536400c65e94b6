// SPDX-License-Identifier: Apache-2.0
// What the log calls before its first line. Declared down here because the log lies below debug/control,
// which defines it: only the top floor knows everything that has to be set up.
#pragma once

namespace kest {

// Base initialisation: sets up the mutexes and the shared settings and switches everything off. Runs once, at
// the first log line of any thread; after a shut-down, again only through ze_kest_Debug_Init. Starts neither
// the command thread nor the log file.
void _ZE_KEST_Debug_Init();

}  // namespace kest
