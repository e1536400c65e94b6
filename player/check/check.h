// SPDX-License-Identifier: Apache-2.0
// `kest-player --check`: tests a module, each test in a process of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kest::player {

struct CheckRequest {
  std::string file;
  std::string kind;    // empty: all of the module
  std::string config;  // of the instances
  std::string only;    // a test or a group; empty: all
  std::optional<uint32_t> seed;
  uint32_t timeLimitSeconds = 60;  // of each test
  bool inProcess = false;          // no processes of their own, for a debugger
  bool list = false;               // only name the tests
  bool json = false;
  int reportFd = -1;  // of a process that runs one test for another kest-player; -1: none
};

enum CheckExit : int { kAllPassed = 0, kSomeFailed = 1, kMisuseOfCheck = 2, kNotLoaded = 3 };

// Prints what it finds. Returns the exit code.
int Check(const CheckRequest &request);

}  // namespace kest::player
