// SPDX-License-Identifier: Apache-2.0
// The last lines of the log, read from its end: a log of 100 MB is not read whole.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ctl/channel/host.h"

namespace kest::ctl {

struct LogTail {
  std::vector<std::string> lines;
  uint64_t end = 0;  // where the next line will begin
};

// The last lines that are taken, at most count. Throws when there is no log or it may not be read.
LogTail ReadTail(Host &host, const std::string &path, size_t count,
                 const std::function<bool(const std::string &)> &takes);

}  // namespace kest::ctl
