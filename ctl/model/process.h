// SPDX-License-Identifier: Apache-2.0
// A process that reads the command pipe.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kest::ctl {

struct Process {
  int pid = 0;
  std::string name;
  std::string exe;           // empty when it may not be read
  std::string start;         // local time, "2026-11-22 03:25:18"
  char state = '?';          // as in /proc/PID/stat: R, S, D, T ...
  std::vector<int> threads;  // thread ids
  int commandThread = 0;     // the thread that executes the commands; 0 when unknown
};

}  // namespace kest::ctl
