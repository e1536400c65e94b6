// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/dump.h"

#include "ctl/parse/scanner.h"

namespace kest::ctl {

std::optional<unsigned> ParseDumpRun(const std::vector<std::string> &lines, bool isInput) {
  for (const std::string &line : lines) {
    Scanner scanner(line);
    unsigned run = 0;
    if (!scanner.UpTo(isInput ? " dump input enable " : " dump output enable ")) continue;
    if (scanner.Number(run) && scanner.Text(" ")) return run;
  }
  return std::nullopt;
}

}  // namespace kest::ctl
