// SPDX-License-Identifier: Apache-2.0
// One question and its answer: lines into the pipe, and what the log says between the markers around them.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "ctl/channel/host.h"
#include "ctl/channel/late_notice.h"
#include "ctl/channel/log_follower.h"
#include "ctl/channel/marker.h"
#include "ctl/channel/reply.h"
#include "ctl/error.h"

namespace kest::ctl {

// For an answer that a restart of the log took.
CtlError AnswerLost(const std::string &what);

class Exchange {
 public:
  Exchange(Host &host, const std::string &directory);

  // Writes the lines between the markers, all at once. Throws when nobody can take them.
  void Send(const std::vector<std::string> &lines);
  // The answer; empty when it did not come in time. Throws when a part of it was lost. showLate: may be
  // empty.
  std::optional<Reply> Receive(std::chrono::milliseconds timeout, const ShowNotice &showLate);
  // Whether the log was emptied or replaced, as far as can be told, and may have taken the answer with it.
  [[nodiscard]] bool MayHaveLostAnswer() const { return log_.MayHaveRestarted(); }

 private:
  using Clock = std::chrono::steady_clock;

  static constexpr std::chrono::microseconds kFirstPause{50};

  [[nodiscard]] bool TakeMore();
  void ProbeWhenQuiet();
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
  bool overtaken_ = false;  // by the answer to a probe
  Clock::time_point nextProbe_{};
  std::chrono::milliseconds probePause_{100};
  std::chrono::microseconds pause_ = kFirstPause;  // between two looks at the log
};

}  // namespace kest::ctl
