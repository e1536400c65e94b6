// SPDX-License-Identifier: Apache-2.0
// Memory that runs out, and a count of what real-time code must not call.
#pragma once

#include <atomic>
#include <cstdint>
#include <set>

namespace kest::test {

// While one lives, one request of the process for memory fails: for a block, a stream, a mapping or a thread.
class FailingAllocator {
 public:
  explicit FailingAllocator(uint32_t u32Failing) {  // the first is 1
    s32Held_ = 0;
    bHasFailed_ = false;
    u32UntilFailure_ = u32Failing;
  }
  ~FailingAllocator() { Recover(); }
  FailingAllocator(const FailingAllocator &) = delete;
  FailingAllocator &operator=(const FailingAllocator &) = delete;

  // From now on every request is granted.
  static void Recover() { u32UntilFailure_ = 0; }

  static bool HasFailed() { return bHasFailed_; }
  // What was granted and is not given back yet, since the construction.
  static int32_t Held() { return s32Held_; }

  // For the wrapped calls: whether the request of this site fails, and what a call has granted or given back.
  static bool RunsOut(const void *pvSite);
  static void Count(int32_t s32Held);

 private:
  static inline std::atomic<uint32_t> u32UntilFailure_{0};
  static inline std::atomic<bool> bHasFailed_{false};
  static inline std::atomic<int32_t> s32Held_{0};
};

// The calls in the code that have asked for memory while a failure was due, and those that were refused.
struct Sites {
  std::set<const void *> asking, refused;
};
Sites SitesSoFar();

// How often the calling thread has asked for memory, given it back or called a lock or a condition.
uint64_t MemoryAndLockCalls();

}  // namespace kest::test
