// SPDX-License-Identifier: Apache-2.0
// Whether a process took a line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ctl/channel/reply.h"

namespace kest::ctl {

struct Verdict {
  std::optional<bool> accepted;       // empty when refusals were not visible
  std::vector<std::string> reported;  // what the command thread reported at ERR level
  std::vector<std::string> lines;     // what else was printed, without the echo of the line
  double elapsedMs = 0.0;
};

// commandThread is the thread that executes commands, 0 when unknown: reports of other threads do not count.
Verdict Judge(const Reply &reply, bool refusalsAreVisible, int commandThread);
// Drops what the dispatcher prints on the way to the command.
std::vector<std::string> WithoutEcho(const std::vector<std::string> &lines);

}  // namespace kest::ctl
