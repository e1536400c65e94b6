// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/live_output.h"

#include <cstdio>
#include <ctime>

#include <fmt/chrono.h>

#include "ctl/error.h"

namespace kest::ctl {

std::string TimeOfDay() {
  return fmt::format("{:%T}", fmt::localtime(std::time(nullptr)));
}

void FlushOutput() {
  std::fflush(stdout);
  if (std::ferror(stdout) != 0) throw CtlError(ExitCode::kDone, "nobody reads the output any more");
}

}  // namespace kest::ctl
