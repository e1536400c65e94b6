// SPDX-License-Identifier: Apache-2.0
// A test of the player: a directory for its files, empty at the start, and a debug directory beside it.
#pragma once

#include <filesystem>
#include <optional>

#include "player/config/options.h"
#include "tests/player/audio_data.h"
#include "tests/player/player_process.h"
#include "tests/support/library_test.h"

namespace kest::test {

// Types a command into the pipe of the running player and gives what it adds to the log, with every run of
// blanks made one.
std::string Ask(const std::string &command);

class PlayerTest : public testing::Test {
 public:
  // A file of the test.
  static std::string Path(const std::string &name);

 protected:
  PlayerTest();
  ~PlayerTest() override;

  // Bytes of the output so far; 0 while there is none.
  [[nodiscard]] uint64_t OutputSize() const;
  // Waits until the output has grown by so much; false when the player has ended first.
  bool PlayOn(PlayerProcess &player, uint64_t bytes) const;

  // A run as fast as possible in this process.
  [[nodiscard]] player::Options Fast(const std::vector<std::string> &inputs) const;

  const std::string out_ = Path("out.wav");
};

// A player, asked while it plays and ended as its user does.
class RunningPlayerTest : public PlayerTest {
 protected:
  // Far more than what the pipelines hold of 16-bit stereo.
  static constexpr uint64_t kPlentyOfBytes = 100000;

  void Start(Texts arguments);
  void End();
  // Types a command, waits until what the log adds is the answer, and gives that.
  std::string AskUntil(const testing::Matcher<std::string> &answer, const std::string &command);

  std::optional<PlayerProcess> player_;
};

}  // namespace kest::test
