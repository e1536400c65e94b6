// SPDX-License-Identifier: Apache-2.0
// Ctrl-C and SIGTERM end a command in an orderly way: whatever waits notices and throws.
#pragma once

#include <chrono>

namespace kest::ctl {

// From now on SIGINT, SIGTERM and SIGHUP are only noted. SIGPIPE is ignored.
void CatchInterrupts();
[[nodiscard]] bool IsInterrupted();
// Whether it was more than Ctrl-C, so that the shell ends too.
[[nodiscard]] bool IsToldToEnd();
// For the shell, which goes on after Ctrl-C.
void ForgetInterrupt();
// While it lives, an interrupt ends no wait: whatever was switched on must be switched off first.
class HoldingInterrupts {
 public:
  HoldingInterrupts();
  ~HoldingInterrupts();
  HoldingInterrupts(const HoldingInterrupts &) = delete;
  HoldingInterrupts &operator=(const HoldingInterrupts &) = delete;
};

// Throws CtlError when interrupted.
void ThrowIfInterrupted();
// Sleeps, but not beyond an interrupt; throws then.
void Pause(std::chrono::microseconds duration);

}  // namespace kest::ctl
