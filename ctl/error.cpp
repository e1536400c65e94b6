// SPDX-License-Identifier: Apache-2.0
#include "ctl/error.h"

namespace kest::ctl {

const char *NameOf(ExitCode code) {
  switch (code) {
    case ExitCode::kDone:
      return "done";
    case ExitCode::kRefused:
      return "refused";
    case ExitCode::kUsage:
      return "usage";
    case ExitCode::kUnreachable:
      return "unreachable";
    case ExitCode::kNoAnswer:
      return "no_answer";
    case ExitCode::kSeveralProcesses:
      return "several_processes";
    case ExitCode::kNotFound:
      return "not_found";
    case ExitCode::kLost:
      return "lost";
    case ExitCode::kInterrupted:
      return "interrupted";
  }
  return "unknown";
}

}  // namespace kest::ctl
