// SPDX-License-Identifier: Apache-2.0
// Lets who waits at a terminal know that an answer is late.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace kest::ctl {

// Shows the notice for as long as what it returns lives.
using ShowNotice = std::function<std::shared_ptr<void>()>;

class LateNotice {
 public:
  // show: may be empty.
  explicit LateNotice(ShowNotice show) : show_(std::move(show)) {}

  // To be called again and again while the answer does not come.
  void ShowWhenLate() {
    if (shown_ == nullptr && show_ && Clock::now() >= due_) shown_ = show_();
  }

 private:
  using Clock = std::chrono::steady_clock;

  // Early enough that something is on the screen within a tenth of a second.
  static constexpr std::chrono::milliseconds kLate{80};

  ShowNotice show_;
  Clock::time_point due_ = Clock::now() + kLate;
  std::shared_ptr<void> shown_;
};

}  // namespace kest::ctl
