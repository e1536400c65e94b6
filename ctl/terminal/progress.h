// SPDX-License-Identifier: Apache-2.0
// How far something is that takes long: a line on the terminal that goes away at the end.
#pragma once

#include <chrono>
#include <string>

namespace kest::ctl {

class Progress {
 public:
  // Shown only where standard error is a terminal, and not when quiet.
  Progress(std::string what, std::chrono::milliseconds total, bool quiet);
  ~Progress();
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  void Show(std::chrono::milliseconds elapsed) const;

 private:
  std::string what_;
  std::chrono::milliseconds total_;
  bool isShown_;
};

}  // namespace kest::ctl
