// SPDX-License-Identifier: Apache-2.0
// How far a command has come, on one line of a terminal that standard error leads to; nothing elsewhere.
#pragma once

#include <string>

namespace kest::ctl {

class StatusLine {
 public:
  explicit StatusLine(bool quiet);
  // Takes the line away.
  ~StatusLine();
  StatusLine(const StatusLine &) = delete;
  StatusLine &operator=(const StatusLine &) = delete;

  void Show(const std::string &text) const;

 private:
  bool isShown_;
};

}  // namespace kest::ctl
