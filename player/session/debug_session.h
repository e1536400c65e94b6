// SPDX-License-Identifier: Apache-2.0
// Keeps the library's debug layer up for as long as the object exists.
#pragma once

#include "player/session/pipe_waker.h"

namespace kest::player {

class DebugSession {
 public:
  // Warns on stderr when there will be no log or no command pipe. The process must ignore SIGPIPE.
  DebugSession();
  ~DebugSession();
  DebugSession(const DebugSession &) = delete;
  DebugSession &operator=(const DebugSession &) = delete;

 private:
  PipeWaker waker_;
};

}  // namespace kest::player
