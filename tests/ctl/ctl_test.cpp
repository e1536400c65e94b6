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

void ExpectAnswers(const std::vector<CtlCase> &cases, const std::string &before) {
  for (const CtlCase &expected : cases) {
    const CtlResult result = Ctl(expected.arguments, before);
    EXPECT_EQ(expected.exitCode, result.exitCode) << expected.arguments << "\n" << result.err;
    EXPECT_THAT(result.err, testing::HasSubstr(expected.message)) << expected.arguments;
  }
}

PlayerProcess &CtlTest::StartPlayer(const std::vector<std::string> &more, const std::string &preparation,
                                    const std::string &input) {
  std::vector<std::string> arguments = {input, "-o", Path("out" + std::to_string(players_.size()) + ".wav"),
                                        "--loop"};
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

std::map<std::string, uint64_t> CtlTest::FilesOf(const std::string &beginning) {
  std::map<std::string, uint64_t> files;
  for (const auto &entry : std::filesystem::directory_iterator(KEST_DEBUG_DIR)) {
    const std::string name = entry.path().filename().string();
    if (name.compare(0, beginning.size(), beginning) == 0) files[name] = entry.file_size();
  }
  return files;
}

bool CtlTest::IsQuiet(const std::string &beginning) {
  const auto blocks = [] {
    return CtlJson("status Dec/Lpcm")["data"]["filters"][0]["values"]["OkFrmCnt"].get<int>();
  };
  const auto before = FilesOf(beginning);
  const int first = blocks();
  return WaitFor([&] { return blocks() > first + 20; }) && FilesOf(beginning) == before;
}

}  // namespace kest::test
