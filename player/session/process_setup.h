// SPDX-License-Identifier: Apache-2.0
// What the process needs before anything else of it runs.
#pragma once

#include <csignal>

#include "programs/unique_fd.h"

namespace kest::player {

// Opens /dev/null on the standard descriptors that are closed: otherwise files of the run would take their
// place, and messages would go into those.
void FillStandardDescriptors();

// Blocks the signals that end a run in every thread, for the main thread to wait for them: SIGINT, SIGTERM
// and, unless the run is meant to outlive its terminal as with nohup, SIGHUP.
sigset_t BlockEndSignals();

// A descriptor that is readable while one of the signals is pending, for waits before the run.
UniqueFd WatchSignals(const sigset_t &signals);

// A reader that closes the output or the command pipe, and the limit of a file's size, are errors of a write
// and do not kill the process.
void IgnoreWriteSignals();

}  // namespace kest::player
