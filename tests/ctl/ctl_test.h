// SPDX-License-Identifier: Apache-2.0
// A test of kestctl: a player that plays on and on, and the tool run beside it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/player/player_test.h"

namespace kest::test {

struct CtlResult {
  int exitCode;
  std::string out;
  std::string err;
};

// Runs kestctl with arguments in the syntax of a shell. before goes before its name: variables, or a program
// that runs it.
CtlResult Ctl(const std::string &arguments, const std::string &before = "");
// Its JSON document.
nlohmann::json CtlJson(const std::string &arguments, const std::string &before = "");

struct CtlCase {
  std::string arguments;
  int exitCode;
  std::string message;  // is a part of what stands on standard error
};
void ExpectAnswers(const std::vector<CtlCase> &cases, const std::string &before = "");

class CtlTest : public PlayerTest {
 protected:
  // Starts a player and waits until it reads the pipe and its pipelines are registered.
  // preparation: see PlayerProcess.
  PlayerProcess &StartPlayer(const std::vector<std::string> &more = {}, const std::string &preparation = "",
                             const std::string &input = kRecording);
  // Files of the debug directory whose names begin so, with their sizes.
  static std::map<std::string, uint64_t> FilesOf(const std::string &beginning);
  // Whether the process writes nothing into such files while it plays on: an instrument is off.
  bool IsQuiet(const std::string &beginning);

  std::vector<std::unique_ptr<PlayerProcess>> players_;
};

}  // namespace kest::test
