// SPDX-License-Identifier: Apache-2.0
#include "ctl/terminal/progress.h"

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>
#include <unistd.h>

#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

double Seconds(std::chrono::milliseconds duration) {
  return std::chrono::duration<double>(duration).count();
}

}  // namespace

Progress::Progress(std::string what, std::chrono::milliseconds total, bool quiet)
    : what_(Escape(what)), total_(total), isShown_(!quiet && isatty(STDERR_FILENO) != 0) {
  Show(std::chrono::milliseconds(0));
}

void Progress::Show(std::chrono::milliseconds elapsed) const {
  if (!isShown_) return;
  fmt::print(stderr, "\r{}: {:.1f} of {:.1f} s", what_, Seconds(std::min(elapsed, total_)), Seconds(total_));
  std::fflush(stderr);
}

Progress::~Progress() {
  if (isShown_) std::fputs("\r\033[K", stderr);
}

}  // namespace kest::ctl
