// SPDX-License-Identifier: Apache-2.0
// Memory that runs out, and a count of what real-time code must not call.
#pragma once

#include <cstdint>
#include <set>

namespace kest::test {

// While one lives, one request of the process for memory fails: for a block, a stream, a mapping or a thread.
class FailingAllocator {
 public:
  explicit FailingAllocator(uint32_t u32Failing);  // the first is 1
  ~FailingAllocator();
  FailingAllocator(const FailingAllocator &) = delete;
  FailingAllocator &operator=(const FailingAllocator &) = delete;

  // From now on every request is granted.
  static void Recover();

  [[nodiscard]] bool HasFailed() const;
  // What was granted and is not given back yet, since the construction.
  [[nodiscard]] int32_t Held() const;
};

// The calls in the code that have asked for memory while a failure was due, and those that were refused.
using Sites = std::set<const void *>;
Sites AskingSites();
Sites RefusedSites();

// How often the calling thread has asked for memory, given it back or called a lock or a condition.
uint64_t MemoryAndLockCalls();

}  // namespace kest::test
