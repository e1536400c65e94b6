// SPDX-License-Identifier: Apache-2.0
// Switches something off that was switched on, on every path: at the end, after Ctrl-C, after a time-out.
#pragma once

#include <string>
#include <vector>

#include "ctl/channel/channel.h"

namespace kest::ctl {

class SwitchedOn {
 public:
  // To be made before the first line that switches on. off: the lines that switch off.
  SwitchedOn(Channel &channel, std::vector<std::string> off) : channel_(channel), off_(std::move(off)) {}
  ~SwitchedOn() { Off(); }
  SwitchedOn(const SwitchedOn &) = delete;
  SwitchedOn &operator=(const SwitchedOn &) = delete;

  // True when the process has confirmed it, or nobody is left whose switches matter. Else a warning says so.
  bool Off() noexcept;
  // For a process that does not read its commands at the moment: it will find the lines when it does.
  void LeaveOff() noexcept;

 private:
  bool Confirm();
  void TellSeveral();

  Channel &channel_;
  std::vector<std::string> off_;
  bool isOff_ = false;
};

}  // namespace kest::ctl
