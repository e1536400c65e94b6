// SPDX-License-Identifier: Apache-2.0
#include "player/check/child.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "player/base/player_error.h"
#include "player/check/rig.h"
#include "programs/unique_fd.h"

namespace kest::player {
namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
  UniqueFd read;
  UniqueFd write;
};

Pipe MakePipe() {
  int ends[2] = {-1, -1};
  if (pipe2(ends, O_CLOEXEC) != 0)
    throw PlayerError(std::string("cannot make a pipe: ") + std::strerror(errno));
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

// A crash leaves no core, and the child does not outlive its parent.
void PrepareChild() {
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  dup2(STDERR_FILENO, STDOUT_FILENO);
}

// False at the end of the limit.
bool ReadUntilEnd(int fd, std::string &text, Clock::time_point deadline) {
  std::array<char, 4096> part{};
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd waiting = {fd, POLLIN, 0};
    const int ready = poll(&waiting, 1, static_cast<int>(std::max<int64_t>(left, 0)));
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return false;
    const ssize_t bytes = read(fd, part.data(), part.size());
    if (bytes <= 0) return true;
    text.append(part.data(), static_cast<size_t>(bytes));
  }
}

int g_s32CrashFd = -1;

void OnCrash(int number, siginfo_t *info, void *) {
  std::array<char, 256> place{};
  std::array<char, 512> text{};
  if (number == SIGSEGV || number == SIGBUS) DescribeGuardHit(info->si_addr, place.data(), place.size());
  const int bytes =
      std::snprintf(text.data(), text.size(), "crashed\nit was ended by SIG%s%s%s", sigabbrev_np(number),
                    place.front() == '\0' ? "" : ": it accessed ", place.data());
  static_cast<void>(!write(g_s32CrashFd, text.data(), static_cast<size_t>(bytes)));
  // What failed is tried once more now, without this handler.
}

}  // namespace

ChildOutcome RunInChild(const std::function<void(int fd)> &work, std::chrono::seconds limit) {
  Pipe pipe = MakePipe();
  const pid_t pid = fork();
  if (pid < 0) throw PlayerError(std::string("cannot start a process: ") + std::strerror(errno));
  if (pid == 0) {
    PrepareChild();
    work(pipe.write.Get());
    _exit(0);
  }
  pipe.write.Close();
  ChildOutcome outcome;
  outcome.hasTimedOut = !ReadUntilEnd(pipe.read.Get(), outcome.report, Clock::now() + limit);
  if (outcome.hasTimedOut) kill(pid, SIGKILL);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  if (WIFEXITED(status)) outcome.exitCode = WEXITSTATUS(status);
  return outcome;
}

void ExecuteAgain(const std::vector<std::string> &arguments, int inheritedFd) {
  fcntl(inheritedFd, F_SETFD, 0);
  std::vector<char *> argv;
  argv.reserve(arguments.size() + 2);
  argv.push_back(const_cast<char *>("kest-player"));
  for (const std::string &argument : arguments) {
    argv.push_back(const_cast<char *>(argument.c_str()));
  }
  argv.push_back(nullptr);
  execv("/proc/self/exe", argv.data());
}

void ReportCrashesTo(int fd) {
  static std::array<char, 65536> stack;
  g_s32CrashFd = fd;
  const stack_t alternate = {stack.data(), 0, stack.size()};
  sigaltstack(&alternate, nullptr);
  struct sigaction action {};
  action.sa_sigaction = OnCrash;
  action.sa_flags = static_cast<int>(SA_SIGINFO | SA_ONSTACK | SA_RESETHAND | SA_NODEFER);
  for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
    sigaction(number, &action, nullptr);
  }
}

int CrashReportFd() {
  return g_s32CrashFd;
}

void WriteAll(int fd, const std::string &text) {
  for (size_t done = 0; done < text.size();) {
    const ssize_t bytes = write(fd, text.data() + done, text.size() - done);
    if (bytes < 0 && errno == EINTR) continue;
    if (bytes <= 0) return;
    done += static_cast<size_t>(bytes);
  }
}

}  // namespace kest::player
