// SPDX-License-Identifier: Apache-2.0
// An error that ends a command: its exit code, and for the user what is wrong and what to do about it.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace kest::ctl {

enum class ExitCode {
  kDone = 0,
  kRefused = 1,  // the process refused, or a check failed
  kUsage = 2,
  kUnreachable = 3,  // no process, no pipe, no permission, or a file that cannot be written
  kNoAnswer = 4,
  kSeveralProcesses = 5,
  kNotFound = 6,  // no such pipeline, filter or parameter
  kLost = 7,      // the answer was lost or not understood
  kInterrupted = 130,
};

// The word for the code in JSON documents.
const char *NameOf(ExitCode code);

class CtlError : public std::runtime_error {
 public:
  CtlError(ExitCode code, const std::string &message, std::string hint = {})
      : std::runtime_error(message), code_(code), hint_(std::move(hint)) {}

  [[nodiscard]] ExitCode Code() const { return code_; }
  [[nodiscard]] const std::string &Hint() const { return hint_; }

 private:
  ExitCode code_;
  std::string hint_;
};

}  // namespace kest::ctl
