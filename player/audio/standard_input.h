// SPDX-License-Identifier: Apache-2.0
// What another program writes into standard input: a pipe, a socket, a file. Waits for it can be ended.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "programs/unique_fd.h"

namespace kest::player {

class StandardInput {
 public:
  // Whether an input is named so.
  static bool IsMeantBy(const std::string &name) { return name == "-"; }
  static constexpr const char *kName = "standard input";
  static constexpr const char *kPath = "/dev/stdin";

  // The most that can be waited for.
  static constexpr size_t kMaxBytes = 65536;  // what a pipe holds

  // Throws PlayerError when a terminal is standard input.
  StandardInput();

  // From now on a descriptor that is readable ends waits too; -1: none.
  void EndWaitsBy(int endFd) { endFd_ = endFd; }

  // Waits until so many bytes are held. False when they will not come: the stream has ended or broken, or the
  // wait was ended.
  bool Await(size_t bytes);
  // Ends this and all later waits. Callable from any thread.
  void StopWaiting();

  [[nodiscard]] size_t Held() const { return end_ - begin_; }
  // Takes at most so many of the held bytes out, and returns how many.
  size_t Take(void *to, size_t bytes);

  // The stream ends after so many more bytes, whatever follows them.
  void EndAfter(uint64_t bytes);
  // Nothing follows what is held.
  [[nodiscard]] bool HasEnded() const { return ended_; }
  // Throws PlayerError when reading has failed.
  void CheckIsWhole() const;

 private:
  [[nodiscard]] bool WaitForData() const;
  void ReadMore();

  int endFd_ = -1;
  UniqueFd stopFd_;
  uint64_t bytesLeft_ = UINT64_MAX;  // to be read before the end
  bool ended_ = false;
  int error_ = 0;
  size_t begin_ = 0;
  size_t end_ = 0;
  std::array<uint8_t, kMaxBytes> bytes_{};
};

}  // namespace kest::player
