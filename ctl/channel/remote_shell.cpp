// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/remote_shell.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ctl/channel/interrupt.h"
#include "ctl/error.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kLongestScript{30'000};  // to log in may need a password
constexpr milliseconds kLongestFarewell{500};
constexpr milliseconds kPiece{100};  // of waiting, after which interrupts are noticed
constexpr milliseconds kUninterrupted{2000};
// What the scripts use. Without one of them they would fail in ways that look like something else.
constexpr const char *kNeedPrograms =
    "for p in dd stat cat rm; do command -v $p >/dev/null || "
    "{ echo \"there is no program $p, which kestctl needs\" >&2; exit 1; }; done\n";

struct PipeEnds {
  UniqueFd readEnd;
  UniqueFd writeEnd;
};

PipeEnds MakePipe() {
  int ends[2] = {-1, -1};
  if (pipe2(ends, O_CLOEXEC) != 0) throw CtlError(ExitCode::kUnreachable, "no more files can be opened");
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

// Starts a program with its input and output connected. Errors go where those of kestctl go, so that a
// question for a password and the reason of a failure are seen.
pid_t Spawn(const std::string &script, const UniqueFd &input, const UniqueFd &output) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, input.Get(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, output.Get(), STDOUT_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t pipeSignal;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &pipeSignal);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  std::string words[] = {"sh", "-c", script};
  char *argv[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  pid_t pid = -1;
  const int error = posix_spawn(&pid, "/bin/sh", &files, &attributes, argv, environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  if (error != 0) throw CtlError(ExitCode::kUnreachable, "/bin/sh cannot be started");
  return pid;
}

bool HasEnded(pid_t pid) {
  return waitpid(pid, nullptr, WNOHANG) != 0;
}

}  // namespace

std::string Quote(const std::string &text) {
  std::string quoted = "'";
  for (const char c : text)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// Ctrl-C goes to every process of the terminal; the far side must live on so that kestctl can clean up there.
void RemoteShell::Open() {
  PipeEnds in = MakePipe();
  PipeEnds out = MakePipe();
  pid_ = Spawn(fmt::format("trap '' INT; exec {} sh", command_), in.readEnd, out.writeEnd);
  input_ = std::move(in.writeEnd);
  output_ = std::move(out.readEnd);
  text_.clear();
  Write(fmt::format("LC_ALL=C\nexport LC_ALL\n{}", kNeedPrograms));
}

void RemoteShell::Close() {
  if (pid_ < 0) return;
  input_ = UniqueFd();
  output_ = UniqueFd();
  const auto deadline = Clock::now() + kLongestFarewell;
  while (!HasEnded(pid_)) {
    if (Clock::now() > deadline) kill(pid_, SIGKILL);
    poll(nullptr, 0, 1);
  }
  pid_ = -1;
}

void RemoteShell::Fail(const std::string &what) {
  Close();
  throw CtlError(ExitCode::kUnreachable, fmt::format("\"{}\" {}", command_, what),
                 fmt::format("try by hand: echo 'echo works' | {} sh", command_));
}

void RemoteShell::Write(const std::string &text) {
  for (size_t done = 0; done < text.size();) {
    const ssize_t count = write(input_.Get(), text.data() + done, text.size() - done);
    if (count < 0 && errno != EINTR) Fail("gives no shell");
    if (count > 0) done += static_cast<size_t>(count);
  }
}

// Ctrl-C lets a script finish, so that none leaves a part of its work; unless it takes long, as a login does.
void RemoteShell::ReadMore(milliseconds timeout) {
  if (Clock::now() - begun_ > kUninterrupted) ThrowIfInterrupted();
  pollfd waited = {output_.Get(), POLLIN, 0};
  if (poll(&waited, 1, static_cast<int>(std::min(timeout, kPiece).count())) <= 0) return;
  char piece[65536];
  const ssize_t count = read(output_.Get(), piece, sizeof(piece));
  if (count <= 0) Fail("gives no shell, or the shell has ended");
  text_.append(piece, static_cast<size_t>(count));
}

// Tags around the output tell it from greetings and from what a script before left when it was interrupted.
void RemoteShell::Begin(const std::string &script) {
  begun_ = Clock::now();
  if (pid_ < 0) Open();
  const std::string tag =
      fmt::format("kestctl.{}.{}.{}", getpid(), Clock::now().time_since_epoch().count(), ++scripts_);
  beginTag_ = tag + ".b\n";
  endTag_ = "\n" + tag + ".e ";
  Write(fmt::format("echo {0}.b\n{{\n{1}\n}} </dev/null 2>/dev/null\necho \"\n{0}.e $?\"\n", tag, script));
}

std::string RemoteShell::Partial() const {
  const size_t begin = text_.find(beginTag_);
  return begin == std::string::npos ? "" : text_.substr(begin + beginTag_.size());
}

// A terminal in between would make CR LF of every LF, and destroy the log's bytes.
void RemoteShell::RefuseChangedLineEnds() const {
  const std::string tag = beginTag_.substr(0, beginTag_.size() - 1);
  if (text_.find(tag + "\r") == std::string::npos) return;
  throw CtlError(ExitCode::kUnreachable, fmt::format("\"{}\" changes line ends", command_),
                 "keep it from using a terminal, as in \"adb shell -T\" or \"ssh -T\"");
}

std::optional<RemoteShell::Output> RemoteShell::TakeOutput() {
  const size_t tag = text_.find(beginTag_);
  const size_t end = tag == std::string::npos ? tag : text_.find(endTag_, tag);
  const size_t lineEnd = end == std::string::npos ? end : text_.find('\n', end + endTag_.size());
  if (lineEnd == std::string::npos) return std::nullopt;
  const size_t begin = tag + beginTag_.size();
  Output output = {text_.substr(begin, end - std::min(end, begin)),
                   std::atoi(text_.c_str() + end + endTag_.size())};
  text_.erase(0, lineEnd + 1);
  return output;
}

std::optional<RemoteShell::Output> RemoteShell::Finish(milliseconds timeout) {
  const auto deadline = Clock::now() + timeout;
  while (true) {
    RefuseChangedLineEnds();
    if (auto output = TakeOutput()) return output;
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return std::nullopt;
    ReadMore(left);
  }
}

RemoteShell::Output RemoteShell::Run(const std::string &script) {
  Begin(script);
  auto output = Finish(kLongestScript);
  if (!output) Fail(fmt::format("has not answered for {} s", kLongestScript.count() / 1000));
  return *std::move(output);
}

}  // namespace kest::ctl
