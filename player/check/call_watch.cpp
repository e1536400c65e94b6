// SPDX-License-Identifier: Apache-2.0
#include "player/check/call_watch.h"

namespace kest::player {
namespace {

bool g_bInterposed = false;

}  // namespace

thread_local CallWatch t_callWatch;

bool CallsAreWatched() {
  return g_bInterposed;
}

void AnnounceInterposedCalls() {
  g_bInterposed = true;
}

bool NoteAllocation(const char *name, bool isNew) {
  CallWatch &watch = t_callWatch;
  if (!watch.active) return true;
  if (watch.firstAllocation == nullptr) watch.firstAllocation = name;
  if (isNew) ++watch.blocksHeld;
  return ++watch.allocations != watch.failingAllocation;
}

void NoteFree(const char *name) {
  CallWatch &watch = t_callWatch;
  if (!watch.active) return;
  --watch.blocksHeld;
  if (watch.failingAllocation > 0) return;
  if (watch.firstAllocation == nullptr) watch.firstAllocation = name;
  ++watch.allocations;
}

void NoteLock(const char *name) {
  CallWatch &watch = t_callWatch;
  if (!watch.active) return;
  if (watch.firstLock == nullptr) watch.firstLock = name;
  ++watch.locks;
}

}  // namespace kest::player
