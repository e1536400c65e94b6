// SPDX-License-Identifier: Apache-2.0
// The lines that a sink did not take whole. The first line that it takes again begins with their number.
#pragma once

#include <atomic>

#include "debug/log/log_line.h"

namespace kest {

// Several threads may write to the sink at once.
class LostLines {
 public:
  // What one line has to make good.
  struct Claim {
    uint32_t u32Lost;
    bool bInMidLine;
  };

  Claim Take() {
    if (u32Lost_.load(std::memory_order_relaxed) == 0) return {};
    return {u32Lost_.exchange(0), bInMidLine_.exchange(false)};
  }

  // Begins the line. False when there is no memory for that.
  [[nodiscard]] static bool Begin(LogLine &line, const Claim &claim) {
    const bool bApart = !claim.bInMidLine || line.AppendText("\n");
    return (claim.u32Lost == 0 || line.Append("Lost lines: %u\n", claim.u32Lost)) && bApart;
  }

  // False when the sink did not take the line whole: the next one then makes it good together with the claim.
  bool Settle(const Claim &claim, const LogLine &line, ssize_t s32Written) {
    if (s32Written == static_cast<ssize_t>(line.Length())) return true;
    if (s32Written > 0 || claim.bInMidLine) bInMidLine_ = true;
    u32Lost_ += claim.u32Lost + 1;
    return false;
  }

 private:
  std::atomic<uint32_t> u32Lost_{0};
  std::atomic<bool> bInMidLine_{false};
};

}  // namespace kest
