// SPDX-License-Identifier: Apache-2.0
// A program at a terminal of its own: keys go in, what is shown comes out.
#pragma once

#include <string>

#include <sys/types.h>

namespace kest::test {

class TerminalProcess {
 public:
  // command: in the syntax of a shell.
  explicit TerminalProcess(const std::string &command);
  ~TerminalProcess();
  TerminalProcess(const TerminalProcess &) = delete;
  TerminalProcess &operator=(const TerminalProcess &) = delete;

  void Type(const std::string &keys) const;
  // Whether the text is shown, behind what earlier calls have found.
  bool Shows(const std::string &text);
  // What was shown and not yet found, for messages.
  [[nodiscard]] const std::string &Rest() const { return shown_; }
  void Signal(int number) const;
  // 128 and the signal's number when a signal ended it.
  int ExitCode();

 private:
  void TakeWhatIsShown();

  pid_t pid_ = -1;
  int terminal_ = -1;
  std::string shown_;
};

}  // namespace kest::test
