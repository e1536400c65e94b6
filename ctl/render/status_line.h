// SPDX-License-Identifier: Apache-2.0
// How far a command has come, on one line of a terminal that standard error leads to; nothing elsewhere.
#pragma once

#include <chrono>
#include <string>

namespace kest::ctl {

class StatusLine {
 public:
  explicit StatusLine(bool isSilent);
  // Takes the line away.
  ~StatusLine();
  StatusLine(const StatusLine &) = delete;
  StatusLine &operator=(const StatusLine &) = delete;

  void Show(const std::string &text) const;
  void ShowTime(const std::string &what, std::chrono::milliseconds elapsed,
                std::chrono::milliseconds total) const;

 private:
  bool isShown_;
};

}  // namespace kest::ctl
