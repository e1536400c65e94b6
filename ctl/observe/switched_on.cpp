// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/switched_on.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/channel/interrupt.h"

namespace kest::ctl {
namespace {

constexpr int kTries = 3;
constexpr int kTellings = 20;
constexpr std::chrono::milliseconds kPauseBetween{1};

}  // namespace

bool SwitchedOn::Off() noexcept {
  if (isOff_) return true;
  isOff_ = true;
  const HoldingInterrupts holding;
  try {
    for (int tries = 0; tries < kTries; ++tries) {
      if (Confirm()) return true;
    }
    channel_.Warn(fmt::format("it is not known whether the process has taken {}", fmt::join(off_, ", ")));
  } catch (const std::exception &error) {
    channel_.Warn(fmt::format("not switched off, send {} yourself: {}", fmt::join(off_, ", "), error.what()));
  }
  return false;
}

void SwitchedOn::LeaveOff() noexcept {
  try {
    const std::string lines = fmt::format("{}\n", fmt::join(off_, "\n"));
    isOff_ =
        channel_.GetHost().WriteToPipe(channel_.Settings().directory + "D", lines) == WriteResult::kWritten;
  } catch (const std::exception &) {
    isOff_ = false;
  }
  Off();
}

// False: it may have been taken, but the answer was lost.
bool SwitchedOn::Confirm() {
  try {
    static_cast<void>(channel_.Send(off_));
    return true;
  } catch (const CtlError &error) {
    if (error.Code() == ExitCode::kUnreachable) {
      static_cast<void>(channel_.IsDeserted());  // throws when it is the other system that cannot be reached
      return true;
    }
    if (error.Code() == ExitCode::kSeveralProcesses) TellSeveral();
    if (error.Code() == ExitCode::kSeveralProcesses || error.Code() == ExitCode::kLost) return false;
    throw;
  }
}

// A process that was started meanwhile may take a line in place of the one that is meant; both may have it.
void SwitchedOn::TellSeveral() {
  const std::string lines = fmt::format("{}\n", fmt::join(off_, "\n"));
  for (int telling = 0; telling < kTellings; ++telling) {
    channel_.GetHost().WriteToPipe(channel_.Settings().directory + "D", lines);
    Pause(kPauseBetween);
  }
}

}  // namespace kest::ctl
