// SPDX-License-Identifier: Apache-2.0
// A list of thread ids that one thread writes while others read it without a lock. A reader sees the old or
// the new value of each entry.
#pragma once

#include <cstdint>

#include "utility/core/shared_value.h"

namespace kest {

class TidList {
 public:
  static constexpr uint32_t kMax = 24;

  // False, ignoring the id, when the list is full. 0 takes up a place but stands for no id.
  bool Append(int32_t s32Tid) {
    const uint32_t u32Used = Load(u32Used_);
    if (u32Used >= kMax) return false;
    Store(as32Tid_[u32Used], s32Tid);
    Store(u32Used_, u32Used + 1);
    return true;
  }

  void Remove(int32_t s32Tid) {
    for (int32_t &s32Entry : as32Tid_)
      if (Load(s32Entry) == s32Tid) Store(s32Entry, 0);
  }

  void Clear() {
    Store(u32Used_, uint32_t{0});
    for (int32_t &s32Entry : as32Tid_)
      Store(s32Entry, 0);
  }

  [[nodiscard]] int32_t At(uint32_t u32Index) const { return Load(as32Tid_[u32Index]); }

  // Looks only at the places in use, so an unused list costs a single load.
  [[nodiscard]] bool IsEmpty() const {
    const uint32_t u32Used = Load(u32Used_);
    for (uint32_t i = 0; i < u32Used; ++i)
      if (At(i) != 0) return false;
    return true;
  }

  [[nodiscard]] bool Holds(int32_t s32Tid) const {
    for (const int32_t &s32Entry : as32Tid_)
      if (Load(s32Entry) == s32Tid) return true;
    return false;
  }

 private:
  uint32_t u32Used_ = 0;
  int32_t as32Tid_[kMax] = {};
};

}  // namespace kest
