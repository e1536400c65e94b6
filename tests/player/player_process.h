// SPDX-License-Identifier: Apache-2.0
// The real kest-player, started as a process.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kest::test {

struct PlayerResult {
  int exitCode;  // 128 and the signal's number when a signal ended it
  std::string out;
  std::string err;
};

class PlayerProcess {
 public:
  // preparation: shell commands that come before the player in its process.
  explicit PlayerProcess(const std::vector<std::string> &arguments, const std::string &preparation = "");
  ~PlayerProcess();
  PlayerProcess(const PlayerProcess &) = delete;
  PlayerProcess &operator=(const PlayerProcess &) = delete;

  [[nodiscard]] pid_t Pid() const { return pid_; }
  void Signal(int number) const;
  [[nodiscard]] bool IsRunning();
  PlayerResult Wait();

 private:
  pid_t pid_ = -1;
  int status_ = 0;
  bool running_ = true;
  std::string outPath_;
  std::string errPath_;
};

// Plays as fast as possible, to the end.
PlayerResult PlayFast(std::vector<std::string> arguments, const std::string &preparation = "");

// Waits until the condition holds or the player has ended; false when it has ended first.
bool WaitWhilePlaying(PlayerProcess &player, const std::function<bool()> &condition);

}  // namespace kest::test
