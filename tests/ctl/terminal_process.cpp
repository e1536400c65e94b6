// SPDX-License-Identifier: Apache-2.0
#include "tests/ctl/terminal_process.h"

#include <csignal>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/debug_layer.h"

namespace kest::test {

TerminalProcess::TerminalProcess(const std::string &command) {
  winsize size{};
  size.ws_row = 40;
  size.ws_col = 200;
  pid_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (pid_ != 0) return;
  setenv("TERM", "dumb", 1);
  setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // libedit keeps two texts; other tests look for leaks of ours
  execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
  _exit(127);
}

TerminalProcess::~TerminalProcess() {
  close(terminal_);
  if (pid_ <= 0) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

void TerminalProcess::Type(const std::string &keys) const {
  static_cast<void>(!write(terminal_, keys.data(), keys.size()));
}

void TerminalProcess::TakeWhatIsShown() {
  pollfd output = {terminal_, POLLIN, 0};
  char piece[4096];
  while (poll(&output, 1, 0) > 0) {
    const ssize_t size = read(terminal_, piece, sizeof(piece));
    if (size <= 0) return;
    shown_.append(piece, static_cast<size_t>(size));
  }
}

bool TerminalProcess::Shows(const std::string &text) {
  return WaitFor([&] {
    TakeWhatIsShown();
    const size_t found = shown_.find(text);
    if (found == std::string::npos) return false;
    shown_.erase(0, found + text.size());
    return true;
  });
}

void TerminalProcess::Signal(int number) const {
  kill(pid_, number);
}

int TerminalProcess::ExitCode() {
  int status = 0;
  // Its last output must find room.
  const bool hasEnded = WaitFor([&] {
    TakeWhatIsShown();
    return waitpid(pid_, &status, WNOHANG) == pid_;
  });
  if (!hasEnded) return -1;
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace kest::test
