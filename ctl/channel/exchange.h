// SPDX-License-Identifier: Apache-2.0
// One question and its answer: lines into the pipe, and what the log says between the markers around them.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "ctl/channel/host.h"
#include "ctl/channel/log_follower.h"
#include "ctl/channel/marker.h"
#include "ctl/channel/reply.h"

namespace kest::ctl {

class Exchange {
 public:
  Exchange(Host &host, const std::string &directory);

  // Writes the lines between the markers, all at once. Throws when nobody can take them.
  void Send(const std::vector<std::string> &lines);
  // The answer; empty when it did not come in time. Throws when a part of it was lost.
  std::optional<Reply> Receive(std::chrono::milliseconds timeout);

 private:
  [[nodiscard]] bool TakeMore();
  [[nodiscard]] bool IsGone();
  [[nodiscard]] bool IsStillInLog() const;
  void DropWhatCameBefore();
  [[nodiscard]] Reply CutOut() const;

  Host &host_;
  std::string pipePath_;
  Marker marker_;
  LogFollower log_;
  std::string text_;         // from the begin marker on, once it has come
  uint64_t textOffset_ = 0;  // where the text is in the log
  bool begun_ = false;
  std::optional<std::chrono::steady_clock::time_point> readSince_;  // all lines, after a restart of the log
};

}  // namespace kest::ctl
