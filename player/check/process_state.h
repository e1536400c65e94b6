// SPDX-License-Identifier: Apache-2.0
// What a module must leave as it is in the process and on the calling thread.
#pragma once

#include <csignal>
#include <set>
#include <string>

#include <sys/types.h>

namespace kest::player {

struct ProcessState {
  std::set<std::string> descriptors;
  size_t threads;
  std::string directory;
  mode_t umask;
  sigset_t blocked;
  unsigned long floatingPoint;  // control bits of the calling thread

  static ProcessState Now();
  // What has changed since, as in "changes the umask"; "" for nothing.
  [[nodiscard]] std::string ChangeSince() const;
};

}  // namespace kest::player
