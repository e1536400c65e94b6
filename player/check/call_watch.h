// SPDX-License-Identifier: Apache-2.0
// Counts the allocations and locks of a thread, and lets an allocation fail. interposed_calls.cpp, which only
// the executable has, calls it from malloc, pthread_mutex_lock and the like.
#pragma once

#include <cstdint>

namespace kest::player {

struct CallWatch {
  bool active = false;
  uint32_t allocations = 0;  // frees among them
  uint32_t locks = 0;
  int64_t blocksHeld = 0;  // allocated and not freed
  const char *firstAllocation = nullptr;
  const char *firstLock = nullptr;
  uint32_t failingAllocation = 0;  // number of the one that fails, from 1; 0: none
};

extern thread_local CallWatch t_callWatch;

// Whether calls reach the watch in this process.
bool CallsAreWatched();

// From what stands in for the calls.
void AnnounceInterposedCalls();
// False when the allocation is to fail. isNew: not a realloc of something.
bool NoteAllocation(const char *name, bool isNew = true);
void NoteFree(const char *name);
void NoteLock(const char *name);

}  // namespace kest::player
