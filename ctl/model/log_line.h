// SPDX-License-Identifier: Apache-2.0
// A line of the log.
#pragma once

#include <string>

namespace kest::ctl {

struct LogLine {
  std::string level;  // "ERR", "WRN", "INFO", "TRACE", "ENTER", "EXIT"; "PRINT" for a line without prefix
  int pid = 0;        // 0 on lines without prefix
  int tid = 0;
  std::string version;
  int restarts = 0;
  std::string time;      // "11-22 03:25:18.867"
  std::string function;  // empty when the message does not name one
  int sourceLine = 0;
  std::string text;  // without colours of the prefix

  [[nodiscard]] bool HasPrefix() const { return pid != 0; }
};

}  // namespace kest::ctl
