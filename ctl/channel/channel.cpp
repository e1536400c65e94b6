// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/channel.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "ctl/channel/exchange.h"
#include "ctl/channel/interrupt.h"
#include "ctl/channel/marker.h"
#include "ctl/channel/write_failure.h"
#include "ctl/model/level.h"
#include "ctl/parse/lines.h"
#include "ctl/parse/settings.h"

namespace kest::ctl {
namespace {

constexpr std::chrono::milliseconds kReadersStayFresh{500};
constexpr std::chrono::microseconds kAnyonePause{500};
constexpr std::chrono::milliseconds kFirstPatience{100};
constexpr int kTries = 3;
constexpr const char *kLockName = "kestctl.lock";

void CheckLine(const std::string &line) {
  if (line.find('\n') != std::string::npos || line.empty()) {
    throw CtlError(ExitCode::kUsage, "a line must be neither empty nor contain a line end",
                   "an empty line would disturb requests that are running");
  }
  if (line.size() > kLongestLine) {
    throw CtlError(ExitCode::kUsage, fmt::format("the line has {} bytes; a process reads {} at most",
                                                 line.size(), kLongestLine));
  }
}

std::string Describe(const std::vector<Process> &processes) {
  std::string text;
  for (const Process &process : processes)
    text += fmt::format("{}{} ({})", text.empty() ? "" : ", ", process.name, process.pid);
  return text;
}

// Whether refusals are hidden at the level, and it is one that can be set back.
bool NeedsErrLevel(const ProcessSettings &settings) {
  return settings.level < kErrLevel && FindLevel(settings.level) != nullptr;
}

}  // namespace

Channel::Channel(Host &host, ChannelSettings settings) : host_(host), settings_(std::move(settings)) {}

void Channel::Warn(const std::string &warning) {
  if (std::find(warnings_.begin(), warnings_.end(), warning) == warnings_.end()) warnings_.push_back(warning);
}

// To look for all readers takes longer than an answer, so within moments only the one known is looked at
// again.
bool Channel::AreReadersFresh() {
  const bool isRecent = Clock::now() - readersSeen_ < kReadersStayFresh;
  if (!isRecent || readers_.processes.size() != 1) return false;
  const FileFacts pipe = host_.Look(settings_.directory + "D");
  return pipe.IsSameFile(pipe_) && host_.IsReader(readers_.processes[0].pid, pipe_);
}

const Readers &Channel::GetReaders() {
  if (AreReadersFresh()) return readers_;
  pipe_ = host_.Look(settings_.directory + "D");
  readers_ = pipe_.kind == FileKind::kPipe ? host_.FindReaders(pipe_) : Readers{};
  readersSeen_ = Clock::now();
  return readers_;
}

bool Channel::IsDeserted() {
  const Readers &readers = GetReaders();
  return readers.processes.empty() && readers.hidden == 0;
}

Process Channel::TheProcess() {
  const std::vector<Process> &processes = GetReaders().processes;
  const auto isMeant = [this](const Process &process) { return process.pid == settings_.pid; };
  if (settings_.pid && !processes.empty() && std::none_of(processes.begin(), processes.end(), isMeant)) {
    throw CtlError(ExitCode::kUnreachable, fmt::format("process {} does not read the pipe", *settings_.pid),
                   fmt::format("it is read by {}", Describe(processes)));
  }
  if (processes.size() > 1 && !settings_.anyProcess) {
    throw CtlError(ExitCode::kSeveralProcesses,
                   fmt::format("{} processes read the pipe: {}", processes.size(), Describe(processes)),
                   "a line goes to whichever is first: end all but one, or take what comes with --any");
  }
  if (processes.size() > 1)
    Warn(fmt::format("{} processes read the pipe; which one answered is not known", processes.size()));
  if (processes.size() != 1 && readers_.hidden > 0) {
    Warn(fmt::format("who reads the pipe cannot be seen: the files of {} processes may not be looked at",
                     readers_.hidden));
  }
  return processes.size() == 1 ? processes[0] : Process{};
}

std::shared_ptr<void> Channel::LockOut() {
  std::shared_ptr<void> lock = lock_.lock();
  if (lock == nullptr) lock = host_.LockOut(settings_.directory + kLockName, settings_.timeout);
  lock_ = lock;
  return lock;
}

CtlError Channel::Silence(bool mayBeLost) {
  const Surroundings around(host_, settings_.directory);
  std::optional<Finding> reason = LastingReasonOfSilence(around);
  if (!reason && mayBeLost) return AnswerLost("the answer was lost");
  if (!reason) reason = PassingReasonOfSilence(around);
  if (around.unreadBytes.value_or(0) > 0)
    Warn("the lines stay in the pipe and will be carried out when it is read again");
  const std::string noAnswer = fmt::format("no answer within {} ms: ", settings_.timeout.count());
  if (reason) return {ExitCode::kNoAnswer, noAnswer + reason->found, reason->remedy};
  return {ExitCode::kNoAnswer, noAnswer + "the lines were read, but no answer came into the log",
          fmt::format("the command thread may be excluded from the log: echo kest_debug_watch_tid=0 >{0} and "
                      "echo kest_debug_watch_current_tids=on >{0}",
                      around.PipePath())};
}

Reply Channel::Exchanged(const std::vector<std::string> &lines) {
  for (const std::string &line : lines)
    CheckLine(line);
  Exchange exchange(host_, settings_.directory);
  exchange.Send(lines);
  std::optional<Reply> reply = exchange.Receive(settings_.timeout, showLate_);
  if (!reply) throw Silence(exchange.MayHaveLostAnswer());
  if (reply->strayLine)
    Warn("somebody had left a line without an end in the pipe; it was ended and executed");
  elapsedMs_ = reply->elapsedMs;
  return *std::move(reply);
}

Reply Channel::Ask(const std::vector<std::string> &lines) {
  static_cast<void>(TheProcess());
  const std::shared_ptr<void> lock = LockOut();
  for (int triesLeft = kTries - 1; true; --triesLeft) {
    try {
      return Exchanged(lines);
    } catch (const CtlError &error) {
      if (error.Code() != ExitCode::kLost || triesLeft == 0) throw;
    }
  }
}

std::optional<Lines> Channel::AskAnyone(const std::string &line, LogFollower &log,
                                        const std::function<bool(const Lines &)> &isWhole,
                                        Clock::duration patience, Clock::time_point deadline) {
  const std::string pipe = settings_.directory + "D";
  const WriteResult written = host_.WriteToPipe(pipe, line + "\n");
  if (written != WriteResult::kWritten) throw WriteFailure(host_, pipe, written);
  const auto giveUp = Clock::now() + patience;
  std::string text;
  Lines lines;
  while (!isWhole(lines)) {
    const auto now = Clock::now();
    if (now > deadline) return std::nullopt;
    if (now > giveUp && host_.UnreadBytes(pipe).value_or(0) == 0) return std::nullopt;
    const int restarts = log.Restarts();
    const std::string more = log.ReadMore();
    if (log.Restarts() != restarts) text.clear();
    if (more.empty()) Pause(kAnyonePause);
    text += more;
    lines = SplitLogLines(text);
  }
  return lines;
}

std::vector<ProcessReply> Channel::AskEach(const std::string &line,
                                           const std::function<bool(const Lines &)> &isWhole,
                                           const std::function<std::vector<int>(const Lines &)> &tidsIn) {
  const std::shared_ptr<void> lock = LockOut();
  std::vector<Process> silent = GetReaders().processes;
  std::vector<ProcessReply> replies;
  const auto deadline = Clock::now() + settings_.timeout;
  Clock::duration patience = kFirstPatience;
  bool anyAnswered = false;
  bool mayBeLost = false;
  LateNotice notice(showLate_);
  while (!silent.empty() && Clock::now() < deadline) {
    notice.ShowWhenLate();
    LogFollower log(host_, settings_.directory + "KestLog.txt");
    std::optional<Lines> lines = AskAnyone(line, log, isWhole, patience, deadline);
    if (!lines) {  // from a process that does not log, or a restart of the log took it
      mayBeLost = mayBeLost || log.MayHaveRestarted();
      patience *= 2;
      continue;
    }
    anyAnswered = true;
    const std::vector<int> tids = tidsIn(*lines);
    const auto isFrom = [&](const Process &process) {
      return std::find_first_of(process.threads.begin(), process.threads.end(), tids.begin(), tids.end()) !=
             process.threads.end();
    };
    const auto sender = std::find_if(silent.begin(), silent.end(), isFrom);
    if (sender == silent.end()) continue;
    replies.push_back({std::move(*sender), *std::move(lines)});
    silent.erase(sender);
  }
  if (!anyAnswered) throw Silence(mayBeLost);
  for (const Process &process : silent)
    Warn(fmt::format("{} ({}) has not answered, or has nothing registered", process.name, process.pid));
  return replies;
}

Reply Channel::Send(const std::vector<std::string> &lines) {
  static_cast<void>(TheProcess());
  const std::shared_ptr<void> lock = LockOut();
  return Exchanged(lines);
}

ProcessSettings Channel::AskSettings() {
  const Reply reply = Ask({"kest_print_current_shm"});
  const auto settings = ParseSettings(reply.lines);
  if (!settings) throw CtlError(ExitCode::kLost, "the answer on the log level was not understood");
  return *settings;
}

// The level goes up and down again within one write: whatever happens to kestctl, the process sees all lines
// or none.
Verdict Channel::Change(const std::string &line) {
  const Process process = TheProcess();
  const std::shared_ptr<void> lock = LockOut();
  if (process.pid == 0) return Judge(Exchanged({line}), false, 0);
  const ProcessSettings settings = AskSettings();
  if (!NeedsErrLevel(settings)) {
    return Judge(Exchanged({line}), settings.level >= kErrLevel, process.commandThread);
  }
  if (settings.sharedLevel != settings.level) {
    Warn("the level that processes share differed from this one's; now it is the same");
  }
  const std::string back = fmt::format("kest_log_level={}", FindLevel(settings.level)->name);
  return Judge(Exchanged({"kest_log_level=err", line, back}), true, process.commandThread);
}

}  // namespace kest::ctl
