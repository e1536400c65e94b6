// SPDX-License-Identifier: Apache-2.0
#include "tests/ctl/ctl_test.h"

#include <cstdio>

#include <sys/wait.h>

namespace kest::test {

CtlResult Ctl(const std::string &arguments, const std::string &before) {
  const std::string errPath = PlayerTest::Path("ctl.err");
  const std::string command = before + " " KEST_CTL_COMMAND " " + arguments + " 2>" + errPath;
  FILE *output = popen(command.c_str(), "r");
  CtlResult result = {-1, "", ""};
  char piece[4096];
  for (size_t size = 0; (size = fread(piece, 1, sizeof(piece), output)) > 0;)
    result.out.append(piece, size);
  const int status = pclose(output);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.err = ReadFile(errPath);
  return result;
}

nlohmann::json CtlJson(const std::string &arguments, const std::string &before) {
  return nlohmann::json::parse(Ctl("--json " + arguments, before).out);
}

PlayerProcess &CtlTest::StartPlayer(const std::vector<std::string> &more, const std::string &preparation) {
  std::vector<std::string> arguments = {kRecording, "-o",
                                        Path("out" + std::to_string(players_.size()) + ".wav"), "--loop"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  players_.push_back(std::make_unique<PlayerProcess>(arguments, preparation));
  EXPECT_TRUE(WaitFor([this] {
    const CtlResult ps = Ctl("--json ps");
    if (ps.exitCode != 0) return false;
    if (nlohmann::json::parse(ps.out)["data"]["processes"].size() < players_.size()) return false;
    return players_.size() > 1 || CtlJson("ls")["data"]["pipelines"].size() >= 2;
  }));
  return *players_.back();
}

}  // namespace kest::test
