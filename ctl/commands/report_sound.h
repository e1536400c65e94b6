// SPDX-License-Identifier: Apache-2.0
// The sound in a report, for who asks for it.
#pragma once

#include <string>
#include <vector>

#include "ctl/commands/context.h"

namespace kest::ctl {

struct SoundFile {
  std::string name;  // without directory; of letters, digits, dots, dashes and underlines
  std::string bytes;
};

// A second of what the filter reads and writes, in files as the command dump writes them. Throws CtlError;
// with ExitCode::kLost when nothing has passed.
std::vector<SoundFile> RecordSound(Context &context, const std::string &filter);

}  // namespace kest::ctl
