// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/log_lines.h"

#include "ctl/parse/lines.h"

namespace kest::ctl {

std::vector<std::string> LogLines::Next() {
  const int restarts = log_.Restarts();
  const std::string more = log_.ReadMore();
  if (log_.Restarts() != restarts) rest_.clear();
  rest_ += more;
  const size_t end = rest_.rfind('\n') + 1;  // 0 when there is none
  std::vector<std::string> lines = SplitLogLines(std::string_view(rest_).substr(0, end));
  rest_.erase(0, end);
  return lines;
}

}  // namespace kest::ctl
