// SPDX-License-Identifier: Apache-2.0
#include "tests/player/player_process.h"

#include <algorithm>
#include <sstream>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/player/player_test.h"
#include "tests/support/debug_layer.h"

namespace kest::test {
namespace {

// The player, behind its emulator where the target is not the host.
std::vector<std::string> CommandLine(const std::vector<std::string> &arguments,
                                     const std::string &preparation) {
  std::vector<std::string> words;
  if (!preparation.empty()) words = {"sh", "-c", preparation + "; exec \"$0\" \"$@\""};
  std::istringstream command(KEST_PLAYER_COMMAND);
  for (std::string word; std::getline(command, word, '|');)
    words.push_back(word);
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

pid_t Spawn(const std::vector<std::string> &words, const std::string &outPath, const std::string &errPath) {
  std::vector<char *> argv(words.size());
  std::transform(words.begin(), words.end(), argv.begin(),
                 [](const std::string &word) { return const_cast<char *>(word.c_str()); });
  argv.push_back(nullptr);

  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(), kFlags, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath.c_str(), kFlags, 0600);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t all;
  sigfillset(&all);
  posix_spawnattr_setsigdefault(&attributes, &all);  // this process and nohup ignore some
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  pid_t pid = -1;
  const int result = posix_spawnp(&pid, argv[0], &actions, &attributes, argv.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return result == 0 ? pid : -1;
}

}  // namespace

PlayerProcess::PlayerProcess(const std::vector<std::string> &arguments, const std::string &preparation) {
  static int count = 0;
  const std::string stem = PlayerTest::Path("player" + std::to_string(++count));
  outPath_ = stem + ".out";
  errPath_ = stem + ".err";
  pid_ = Spawn(CommandLine(arguments, preparation), outPath_, errPath_);
}

PlayerProcess::~PlayerProcess() {
  if (!running_) return;
  Signal(SIGKILL);
  Wait();
}

void PlayerProcess::Signal(int number) const {
  kill(pid_, number);
}

bool PlayerProcess::IsRunning() {
  if (running_) running_ = waitpid(pid_, &status_, WNOHANG) == 0;
  return running_;
}

PlayerResult PlayerProcess::Wait() {
  if (running_) waitpid(pid_, &status_, 0);
  running_ = false;
  const int exitCode = WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_);
  return {exitCode, ReadFile(outPath_), ReadFile(errPath_)};
}

PlayerResult PlayFast(std::vector<std::string> arguments, const std::string &preparation) {
  arguments.emplace_back("--fast");
  return PlayerProcess(arguments, preparation).Wait();
}

bool WaitWhilePlaying(PlayerProcess &player, const std::function<bool()> &condition) {
  while (!condition()) {
    if (!player.IsRunning()) return condition();
    usleep(1000);
  }
  return true;
}

}  // namespace kest::test
