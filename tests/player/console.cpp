// SPDX-License-Identifier: Apache-2.0
#include "tests/player/console.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "tests/support/debug_layer.h"

namespace kest::test {
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
