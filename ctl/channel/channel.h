// SPDX-License-Identifier: Apache-2.0
// Talks to the processes that read the command pipe of a directory.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ctl/channel/host.h"
#include "ctl/channel/late_notice.h"
#include "ctl/channel/log_follower.h"
#include "ctl/channel/reply.h"
#include "ctl/channel/surroundings.h"
#include "ctl/channel/verdict.h"
#include "ctl/error.h"
#include "ctl/model/settings.h"

namespace kest::ctl {

struct ChannelSettings {
  std::string directory;  // ends in a slash
  std::chrono::milliseconds timeout{2000};
  std::optional<int> pid;   // the process that is meant
  bool anyProcess = false;  // go on when several processes read the pipe
};

using Lines = std::vector<std::string>;

struct ProcessReply {
  Process process;
  Lines lines;
};

class Channel {
 public:
  Channel(Host &host, ChannelSettings settings);

  // The processes that read the pipe, as seen within the last moments.
  const Readers &GetReaders();
  // The same without looking, for what is said about an answer afterwards.
  [[nodiscard]] const Readers &KnownReaders() const { return readers_; }
  // Whether certainly no process reads the pipe any more.
  bool IsDeserted();
  // The one that is meant; its pid is 0 when it cannot be seen. Throws when there is none or there are
  // several.
  Process TheProcess();

  // Sends lines that change nothing. A lost answer is asked for again.
  Reply Ask(const std::vector<std::string> &lines);
  // Sends a line that changes nothing until each process that reads the pipe has answered: a line goes to
  // whichever is first, and markers may overtake the answer. isWhole says when the lines that have come are
  // an answer, tidsIn which threads it names. Processes that did not answer in time are missing from the
  // result.
  std::vector<ProcessReply> AskEach(const std::string &line,
                                    const std::function<bool(const Lines &)> &isWhole,
                                    const std::function<std::vector<int>(const Lines &)> &tidsIn);
  // Sends lines that may change something, once.
  Reply Send(const std::vector<std::string> &lines);
  // Sends a line and says whether the process took it. The log level is the same afterwards.
  Verdict Change(const std::string &line);
  ProcessSettings AskSettings();
  // Keeps other kestctl processes from sending while it lives; one lock for all that overlap.
  std::shared_ptr<void> LockOut();

  // What went well enough to go on but should be known.
  [[nodiscard]] const std::vector<std::string> &Warnings() const { return warnings_; }
  void Warn(const std::string &warning);
  void ForgetWarnings() { warnings_.clear(); }
  // What shows that an answer is late; empty: nothing does.
  void WhenLate(ShowNotice show) { showLate_ = std::move(show); }
  // How long the last answer took.
  [[nodiscard]] double ElapsedMs() const { return elapsedMs_; }
  [[nodiscard]] const ChannelSettings &Settings() const { return settings_; }
  [[nodiscard]] Host &GetHost() { return host_; }

 private:
  using Clock = std::chrono::steady_clock;

  bool AreReadersFresh();
  Reply Exchanged(const std::vector<std::string> &lines);
  // Why there is no answer.
  CtlError Silence(bool mayBeLost);
  // The lines that are added to the log after a line was sent, once they are an answer; empty when none has
  // come after patience although the line was read, or at the deadline.
  std::optional<Lines> AskAnyone(const std::string &line, LogFollower &log,
                                 const std::function<bool(const Lines &)> &isWhole, Clock::duration patience,
                                 Clock::time_point deadline);

  Host &host_;
  ChannelSettings settings_;
  FileFacts pipe_;
  Readers readers_;
  Clock::time_point readersSeen_{};
  std::weak_ptr<void> lock_;
  std::vector<std::string> warnings_;
  double elapsedMs_ = 0.0;
  ShowNotice showLate_;
};

}  // namespace kest::ctl
