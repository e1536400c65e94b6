// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/status_line.h"

#include <cstdio>

#include <fmt/format.h>
#include <unistd.h>

#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

constexpr const char *kClearLine = "\r\033[K";

}  // namespace

StatusLine::StatusLine(bool quiet) : isShown_(!quiet && isatty(STDERR_FILENO) != 0) {}

StatusLine::~StatusLine() {
  if (isShown_) std::fputs(kClearLine, stderr);
}

void StatusLine::Show(const std::string &text) const {
  if (!isShown_) return;
  fmt::print(stderr, "{}{}", kClearLine, Escape(text));
  std::fflush(stderr);
}

}  // namespace kest::ctl
