// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>

namespace kest::test {

// While one lives, whoever opens a file with one of the flags is refused with EPERM.
class RefusedOpen {
 public:
  explicit RefusedOpen(int s32Flags) { s32Refused_ = s32Flags; }
  ~RefusedOpen() { s32Refused_ = 0; }
  RefusedOpen(const RefusedOpen &) = delete;
  RefusedOpen &operator=(const RefusedOpen &) = delete;

  // For the wrapped call. Counts what it refuses.
  static bool Refuses(int s32Flags);
  static int Count() { return s32Count_; }

 private:
  static inline std::atomic<int> s32Refused_{0};
  static inline std::atomic<int> s32Count_{0};
};

}  // namespace kest::test
