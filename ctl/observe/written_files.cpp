// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/written_files.h"

#include <fmt/format.h>

#include "ctl/channel/interrupt.h"

namespace kest::ctl {

void RemoveWrittenFiles(Channel &channel, const std::vector<std::string> &paths) noexcept {
  const HoldingInterrupts holding;
  for (const std::string &path : paths) {
    try {
      const bool isThere = channel.GetHost().Look(path).kind == FileKind::kRegular;
      if (isThere && !channel.GetHost().Remove(path))
        channel.Warn(fmt::format("{} could not be removed", path));
    } catch (const std::exception &error) {
      channel.Warn(fmt::format("{} may be left behind: {}", path, error.what()));
    }
  }
}

}  // namespace kest::ctl
