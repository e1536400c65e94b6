// SPDX-License-Identifier: Apache-2.0
// The whole terminal, for what is shown live. What was on it before comes back at the end, on every path.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "ctl/render/live_text.h"

struct screen;

namespace kest::ctl {

class Screen {
 public:
  explicit Screen(bool colour);
  ~Screen();
  Screen(const Screen &) = delete;
  Screen &operator=(const Screen &) = delete;

  [[nodiscard]] static size_t Columns();
  // Lines that do not fit can be scrolled to; status is shown at the end of the first one.
  void Show(std::vector<ToneLine> lines, const std::string &status);
  // Takes keys for a while; false when one of them ends the program. Throws when interrupted.
  bool TakeKeys(std::chrono::milliseconds duration);
  // Whether the lines must be made anew, because the terminal has another width.
  bool TakeResized();

 private:
  void Draw();
  bool TakeKey(int key);

  ::screen *screen_;  // of ncurses
  bool colour_;
  bool isResized_ = false;
  int top_ = 0;  // the first line that is shown
  std::vector<ToneLine> lines_;
  std::string status_;
};

}  // namespace kest::ctl
