// SPDX-License-Identifier: Apache-2.0
// A test of the player: a directory for its files, empty at the start, and a debug directory beside it.
#pragma once

#include <string>

#include <gtest/gtest.h>

namespace kest::test {

class PlayerTest : public testing::Test {
 public:
  // A file of the test.
  static std::string Path(const std::string &name);

 protected:
  PlayerTest();
  ~PlayerTest() override;

  const std::string out_ = Path("out.wav");
};

}  // namespace kest::test
