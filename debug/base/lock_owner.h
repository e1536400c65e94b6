// SPDX-License-Identifier: Apache-2.0
// Tells a thread whether it is the one that holds a lock.
#pragma once

#include "utility/core/shared_value.h"

namespace kest {

class LockOwner {
 public:
  [[nodiscard]] bool IsMine() const { return Load(pcThread_) == ThisThread(); }
  void Take() { Store(pcThread_, ThisThread()); }
  void Drop() { Store(pcThread_, static_cast<const char *>(nullptr)); }

 private:
  // The address of a thread-local object identifies a thread without a system call.
  static const char *ThisThread() {
    static thread_local char cAnchor;
    return &cAnchor;
  }

  const char *pcThread_ = nullptr;
};

}  // namespace kest
