// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/status_line.h"

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>
#include <unistd.h>

#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

constexpr const char *kClearLine = "\r\033[K";

double Seconds(std::chrono::milliseconds duration) {
  return std::chrono::duration<double>(duration).count();
}

}  // namespace

StatusLine::StatusLine(bool isSilent) : isShown_(!isSilent && isatty(STDERR_FILENO) != 0) {}

StatusLine::~StatusLine() {
  if (isShown_) std::fputs(kClearLine, stderr);
}

void StatusLine::Show(const std::string &text) const {
  if (!isShown_) return;
  fmt::print(stderr, "{}{}", kClearLine, Escape(text));
  std::fflush(stderr);
}

void StatusLine::ShowTime(const std::string &what, std::chrono::milliseconds elapsed,
                          std::chrono::milliseconds total) const {
  Show(fmt::format("{}: {:.1f} of {:.1f} s", what, Seconds(std::min(elapsed, total)), Seconds(total)));
}

}  // namespace kest::ctl
