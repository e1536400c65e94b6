// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "ctl/channel/verdict.h"
#include "ctl/commands/command.h"

namespace kest::ctl {

// The result of a change: accepted, refused, or not known. What was asked for goes before the rest of the
// data.
Result ResultOf(const Verdict &verdict, Json asked, const std::string &done, const std::string &refused);

}  // namespace kest::ctl
