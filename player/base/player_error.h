// SPDX-License-Identifier: Apache-2.0
// What ends a run early.
#pragma once

#include <stdexcept>

namespace kest::player {

// An error, worded for the user: what is wrong and what to do.
class PlayerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The user ended the run before it could begin.
class RunCancelled : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kest::player
