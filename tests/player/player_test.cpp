// SPDX-License-Identifier: Apache-2.0
#include "tests/player/player_test.h"

#include <algorithm>
#include <csignal>

namespace kest::test {

namespace fs = std::filesystem;

namespace {

// Commands are carried out one after the other: where this one's reply begins, the one before has its whole.
constexpr const char *kMark = "kest_print_current_shm";
constexpr const char *kReplyOfMark = "\nDebugLevel:";
constexpr const char *kEndOfMark = "\nbDebugPresetCmd:";

std::string WithSingleBlanks(std::string text) {
  const auto bothBlank = [](char a, char b) { return a == ' ' && b == ' '; };
  text.erase(std::unique(text.begin(), text.end(), bothBlank), text.end());
  return text;
}

}  // namespace

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

void RunningPlayerTest::Start(Texts arguments) {
  arguments.insert(arguments.end(), {"-o", out_});
  player_.emplace(arguments);
  ASSERT_TRUE(PlayOn(*player_, kPlentyOfBytes)) << player_->Wait().err;
}

void RunningPlayerTest::End() {
  player_->Signal(SIGINT);
  const PlayerResult result = player_->Wait();
  EXPECT_EQ(0, result.exitCode) << result.err;
  EXPECT_EQ("", result.err);
}

std::string RunningPlayerTest::AskUntil(const testing::Matcher<std::string> &answer,
                                        const std::string &command) {
  const size_t before = ReadFile(kLogFile).size();
  std::string added;
  WriteToPipe(command + "\n");
  WaitWhilePlaying(*player_, [&] {
    added = ReadFile(kLogFile).erase(0, before);
    return answer.Matches(added);
  });
  EXPECT_THAT(added, answer);
  return added;
}

std::string Ask(const std::string &command) {
  const size_t before = ReadFile(kLogFile).size();
  WriteToPipe(command + "\n" + kMark + "\n");
  std::string reply;
  EXPECT_TRUE(WaitFor([&] {
    reply = ReadFile(kLogFile).erase(0, before);
    return reply.find(kEndOfMark) != std::string::npos;
  })) << command;
  return WithSingleBlanks(reply.substr(0, reply.find(kReplyOfMark)));
}

}  // namespace kest::test
