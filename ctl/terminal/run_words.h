// SPDX-License-Identifier: Apache-2.0
// Carries out a command line and prints what it gives.
#pragma once

#include <string>
#include <vector>

#include "ctl/commands/context.h"

namespace kest::ctl {

// words: those behind "kestctl". settings: what holds without the options among them. shared: used when the
// options change nothing of its settings; may be NULL. Returns the exit code.
ExitCode RunWords(const std::vector<std::string> &words, Settings settings, Context *shared = nullptr);

}  // namespace kest::ctl
