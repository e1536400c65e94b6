// SPDX-License-Identifier: Apache-2.0
#include "tests/player/player_test.h"

namespace kest::test {

namespace fs = std::filesystem;

PlayerTest::PlayerTest() {
  fs::remove_all(Path(""));
  fs::create_directories(Path(""));
  EmptyDebugDirectory();
}

PlayerTest::~PlayerTest() {
  std::error_code ignored;
  fs::remove_all(Path(""), ignored);
}

std::string PlayerTest::Path(const std::string &name) {
  const fs::path directory = fs::path(KEST_DEBUG_DIR).parent_path().parent_path() / "player-test";
  return (directory / name).string();
}

uint64_t PlayerTest::OutputSize() const {
  std::error_code missing;
  const uintmax_t bytes = fs::file_size(out_, missing);
  return missing ? 0 : bytes;
}

bool PlayerTest::PlayOn(PlayerProcess &player, uint64_t bytes) const {
  const uint64_t wanted = OutputSize() + bytes;
  return WaitWhilePlaying(player, [&] { return OutputSize() >= wanted; });
}

player::Options PlayerTest::Fast(const Texts &inputs) const {
  player::Options options;
  options.inputs = inputs;
  options.output = out_;
  options.fast = true;
  return options;
}

}  // namespace kest::test
