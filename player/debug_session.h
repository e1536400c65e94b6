// SPDX-License-Identifier: Apache-2.0
// The library's debug layer, up while this lives.
#pragma once

#include "player/pipe_waker.h"

namespace kest::player {

class DebugSession {
 public:
  // Says on stderr when there will be no log or no command pipe. The process has to ignore SIGPIPE.
  DebugSession();
  ~DebugSession();
  DebugSession(const DebugSession &) = delete;
  DebugSession &operator=(const DebugSession &) = delete;

 private:
  PipeWaker waker_;
};

}  // namespace kest::player
