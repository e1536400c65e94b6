// SPDX-License-Identifier: Apache-2.0
// Which threads reach the log: those that are watched, or those that are not disabled.
#pragma once

#include <cstdint>

namespace kest {

// Whether the calling thread is to be logged. Any thread, in every log call: no lock, and no system call
// while no thread is singled out.
bool IsThisThreadLogged();

// Both lists empty: every thread is logged.
void WatchEveryThread();

// From now on every thread is logged but those that the registry knows now.
void DisableRegisteredThreads();

// The watch list: while it holds an id only the threads that it names are logged, unless threads are
// disabled. Then a thread that is added is no longer disabled, and that is all.
void ClearWatchedThreads();
void WatchThread(int32_t s32Tid);

// Print a list under the function's name.
void PrintWatchedThreads(const char *pszFunction);
void PrintDisabledThreads(const char *pszFunction);

}  // namespace kest
