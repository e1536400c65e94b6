// SPDX-License-Identifier: Apache-2.0
// Stands in, while it lives, for the kernel's performance events and for the clock of those who read
// them. The events have descriptors of real files, so that reading and closing them is real.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace kest::test {

class FakeCounters {
 public:
  FakeCounters() { pCurrent = this; }
  ~FakeCounters() { pCurrent = nullptr; }
  FakeCounters(const FakeCounters &) = delete;
  FakeCounters &operator=(const FakeCounters &) = delete;

  // What perf_event_open was called with and has given.
  struct Event {
    std::vector<uint64_t> attributes;  // in words
    std::array<int, 4> arguments;      // process, processor, descriptor of the group, flags
    int s32Fd;
    uint64_t u64Id;
  };
  std::vector<Event> events;
  // "reset", "enable", "disable" of the last leader's group, "?" for others
  std::vector<std::string> controls;

  std::array<uint64_t, 3> counts = {};  // of the last three events, delivered when their group is stopped
  std::vector<uint64_t> group;          // delivered instead, unless it is empty
  size_t sztGroupBytes = SIZE_MAX;      // how much of it can be read
  bool bTaskClock = false;              // the real kernel counts, and task clock whatever is asked for
  bool bReadable = true;                // whether a leader that is opened can be read
  int s32OpensLeft = -1;                // until one is refused; never when negative
  uint64_t u64NowUs = 1;

  static inline std::atomic<FakeCounters *> pCurrent{nullptr};
  int Open(const void *pvAttributes, const std::array<int, 4> &arguments);
  int Control(int s32Fd, unsigned long u32Request, void *pvArgument);

 private:
  void Deliver(int s32Fd) const;
};

}  // namespace kest::test
