// SPDX-License-Identifier: Apache-2.0
#include "tests/player/player_test.h"

#include <filesystem>

namespace kest::test {

namespace fs = std::filesystem;

PlayerTest::PlayerTest() {
  fs::remove_all(Path(""));
  fs::create_directories(Path(""));
  fs::create_directories(KEST_DEBUG_DIR);
}

PlayerTest::~PlayerTest() {
  std::error_code ignored;
  fs::remove_all(Path(""), ignored);
}

std::string PlayerTest::Path(const std::string &name) {
  const fs::path directory = fs::path(KEST_DEBUG_DIR).parent_path().parent_path() / "player-test";
  return (directory / name).string();
}

}  // namespace kest::test
