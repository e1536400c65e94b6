// SPDX-License-Identifier: Apache-2.0
// Runs a piece of code on a thread of its own that may not call the system.
#pragma once

#include <string>

namespace kest::player {

struct TrappedCalls {
  bool areTrapped;   // false: this system has no filter for system calls; nothing was run
  std::string call;  // the first one, by name; "" when there was none. The code ended there
};

// code: must itself make no system call. argument: handed to it.
TrappedCalls RunTrapped(void (*code)(void *argument), void *argument);

}  // namespace kest::player
