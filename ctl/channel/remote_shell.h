// SPDX-License-Identifier: Apache-2.0
// A POSIX shell on another system, reached through a command such as "adb shell" or "ssh tv". It stays open
// for all scripts, because to open it takes longer than anything else.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include <sys/types.h>

#include "programs/unique_fd.h"

namespace kest::ctl {

// The text as one word of a shell, whatever is in it.
std::string Quote(const std::string &text);

class RemoteShell {
 public:
  struct Output {
    std::string bytes;
    int status;  // of the script's last command
  };

  // The command is for the shell of this system; the word "sh" is put behind it.
  explicit RemoteShell(std::string command) : command_(std::move(command)) {}
  ~RemoteShell() { Close(); }
  RemoteShell(const RemoteShell &) = delete;
  RemoteShell &operator=(const RemoteShell &) = delete;

  // Runs a script, without input and with what goes to standard error discarded. Throws when the other
  // system cannot be reached or does not answer. Opens the shell when it is not open.
  Output Run(const std::string &script);
  // The same in two steps: Finish gives nothing when the script still runs, and can be called again.
  void Begin(const std::string &script);
  std::optional<Output> Finish(std::chrono::milliseconds timeout);
  // What the script has written so far.
  [[nodiscard]] std::string Partial() const;
  [[nodiscard]] const std::string &Command() const { return command_; }

 private:
  void Open();
  void Close();
  void Write(const std::string &text);
  void ReadMore(std::chrono::milliseconds timeout);
  void RefuseChangedLineEnds() const;
  std::optional<Output> TakeOutput();
  [[noreturn]] void Fail(const std::string &what);

  std::string command_;
  pid_t pid_ = -1;
  UniqueFd input_;
  UniqueFd output_;
  std::string text_;  // what has come and was not taken
  int scripts_ = 0;
  std::chrono::steady_clock::time_point begun_{};  // the script that runs
  std::string beginTag_;
  std::string endTag_;
};

}  // namespace kest::ctl
