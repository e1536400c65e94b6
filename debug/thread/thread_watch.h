// SPDX-License-Identifier: Apache-2.0
// Decides which threads reach the log: only the watched ones, or all but the disabled ones.
#pragma once

#include <cstdint>

namespace kest {

// Whether the calling thread's lines are logged. Called by any thread in every log call: takes no lock, and
// makes no system call unless the list that decides holds an id.
bool IsThisThreadLogged();

// Empties both lists: every thread is logged.
void WatchEveryThread();

// From now on every thread is logged except those registered at this moment.
void DisableRegisteredThreads();

// The watch list: while it holds an id, only the threads on it are logged. After DisableRegisteredThreads the
// disable list decides instead, and a thread added here is merely taken off that list. An id that finds the
// watch list full is ignored altogether.
void ClearWatchedThreads();
void WatchThread(int32_t s32Tid);

// Print a list under the function's name.
void PrintWatchedThreads(const char *pszFunction);
void PrintDisabledThreads(const char *pszFunction);

}  // namespace kest
