// SPDX-License-Identifier: Apache-2.0
// The lines that are added to the log, each when it is whole.
#pragma once

#include <string>
#include <vector>

#include "ctl/channel/log_follower.h"

namespace kest::ctl {

class LogLines {
 public:
  // From the log's present end on.
  LogLines(Host &host, const std::string &directory) : log_(host, directory + "KestLog.txt") {}

  // What was added since the last call; empty when nothing was.
  std::vector<std::string> Next();
  [[nodiscard]] int Restarts() const { return log_.Restarts(); }

 private:
  LogFollower log_;
  std::string rest_;  // the beginning of a line whose end has not come
};

}  // namespace kest::ctl
