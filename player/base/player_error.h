// SPDX-License-Identifier: Apache-2.0
// An error that ends a run, worded for the user: what is wrong and what to do.
#pragma once

#include <stdexcept>

namespace kest::player {

class PlayerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kest::player
