// SPDX-License-Identifier: Apache-2.0
// The library's debug layer, up while this lives.
#pragma once

namespace kest::player {

class DebugSession {
 public:
  // Says on stderr when there will be no log or no command pipe. The process has to ignore SIGPIPE: at the
  // end lines go into the command pipe, whose other readers may leave it.
  DebugSession();
  ~DebugSession();
  DebugSession(const DebugSession &) = delete;
  DebugSession &operator=(const DebugSession &) = delete;
};

}  // namespace kest::player
