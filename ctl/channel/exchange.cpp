// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/exchange.h"

#include <algorithm>

#include "ctl/channel/interrupt.h"
#include "ctl/channel/write_failure.h"
#include "ctl/parse/lines.h"

namespace kest::ctl {
namespace {

constexpr std::chrono::microseconds kLongestPause{5000};
constexpr std::chrono::milliseconds kLongestProbePause{400};

std::string JoinLines(const std::vector<std::string> &lines, const Marker &marker) {
  std::string bytes = marker.Begin() + "\n";
  for (const std::string &line : lines)
    bytes += line + "\n";
  return bytes + marker.End() + "\n";
}

bool HasTag(const std::vector<std::string> &lines, size_t index, const std::string &tag) {
  return Contains(lines[index], tag);
}

// The first line behind the last one with the tag.
size_t LineBehind(const std::vector<std::string> &lines, const std::string &tag) {
  size_t behind = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (HasTag(lines, i, tag)) behind = i + 1;
  }
  return behind;
}

size_t FirstLineWith(const std::vector<std::string> &lines, const std::string &tag) {
  size_t i = 0;
  while (i < lines.size() && !HasTag(lines, i, tag))
    ++i;
  return i;
}

}  // namespace

CtlError AnswerLost(const std::string &what) {
  return {ExitCode::kLost, what, "the log was restarted or replaced meanwhile; repeat the command"};
}

Exchange::Exchange(Host &host, const std::string &directory)
    : host_(host),
      pipePath_(directory + "D"),
      marker_(Marker::Next()),
      log_(host, directory + "KestLog.txt"),
      textOffset_(log_.Offset()) {}

void Exchange::Send(const std::vector<std::string> &lines) {
  const std::string bytes = JoinLines(lines, marker_);
  if (bytes.size() > kLongestWrite) {
    throw CtlError(ExitCode::kUsage, "these are too many lines for one write", "send them in several calls");
  }
  const WriteResult result = host_.WriteToPipe(pipePath_, bytes);
  if (result != WriteResult::kWritten) throw WriteFailure(host_, pipePath_, result);
}

std::optional<Reply> Exchange::Receive(std::chrono::milliseconds timeout, const ShowNotice &showLate) {
  const auto start = Clock::now();
  LateNotice notice(showLate);
  nextProbe_ = start + probePause_;
  for (; !TakeMore(); pause_ = std::min(pause_ * 5 / 4, kLongestPause)) {
    if (overtaken_) throw AnswerLost("the end of the answer was lost");
    if (Clock::now() - start > timeout) return std::nullopt;
    notice.ShowWhenLate();
    ProbeWhenQuiet();
    Pause(pause_);
  }
  if (!begun_ || !IsStillInLog()) throw AnswerLost("the beginning of the answer was lost");
  Reply reply = CutOut();
  reply.elapsedMs = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  return reply;
}

// A restart of the log takes the answer with it, and need not leave a trace: a log may be empty before and
// after, or begin with the same lines. So a process that keeps silent is asked again: lines are carried out
// one after the other, and when the later one is answered, the earlier answer is gone. In the pipe of a
// process that does not read, these few lines do no harm.
void Exchange::ProbeWhenQuiet() {
  const auto now = Clock::now();
  if (now < nextProbe_) return;
  static_cast<void>(host_.WriteToPipe(pipePath_, marker_.Probe() + "\n"));
  pause_ = kFirstPause;  // the next restart may come soon
  nextProbe_ = now + probePause_;
  probePause_ = std::min(2 * probePause_, kLongestProbePause);
}

// True when the end marker has come.
bool Exchange::TakeMore() {
  const int restarts = log_.Restarts();
  std::string more = log_.ReadMore();
  if (log_.Restarts() != restarts || log_.Offset() != textOffset_ + text_.size() + more.size()) {
    text_.clear();
    begun_ = false;
    textOffset_ = log_.Offset() - more.size();
  }
  const size_t searched = text_.size() - std::min(text_.size(), marker_.EndOfEcho().size());
  text_ += more;
  DropWhatCameBefore();
  overtaken_ = overtaken_ || text_.find(marker_.ProbeEcho()) != std::string::npos;
  const size_t end = text_.find(marker_.EndOfEcho(), begun_ ? 0 : searched);
  return end != std::string::npos && text_.find('\n', end) != std::string::npos;
}

// Other threads may log much before the answer begins: of that, only what may be the start of a marker is
// kept.
void Exchange::DropWhatCameBefore() {
  if (begun_) return;
  const size_t begin = text_.find(marker_.BeginTag());
  begun_ = begin != std::string::npos;
  size_t keepFrom = begun_ ? begin : text_.size() - std::min(text_.size(), 2 * kLongestLine);
  keepFrom = std::min({keepFrom, text_.find(marker_.EndTag()), text_.find(marker_.ProbeTag())});
  text_.erase(0, keepFrom);
  textOffset_ += keepFrom;
}

// Between two looks the log may have been emptied and have grown beyond what was read: then parts of the
// answer are missing without a trace. If all of it is still there, in one piece, it is whole.
bool Exchange::IsStillInLog() const {
  const FilePart part = host_.Read(log_.Path(), textOffset_, text_.size());
  return part.bytes == text_;
}

Reply Exchange::CutOut() const {
  std::vector<std::string> lines = SplitLines(text_);
  size_t first = LineBehind(lines, marker_.BeginTag());
  const size_t end = FirstLineWith(lines, marker_.EndTag());
  Reply reply;
  // Every command begins with an empty line. What comes before belongs to the marker.
  const size_t command =
      static_cast<size_t>(std::find(lines.begin() + static_cast<ptrdiff_t>(std::min(first, end)),
                                    lines.begin() + static_cast<ptrdiff_t>(end), "") -
                          lines.begin());
  reply.strayLine = !Contains(text_, marker_.BeginTag() + ": set parameter ");
  first = command < end ? command + 1 : first;
  size_t last = end;
  if (last > first && lines[last - 1].empty()) --last;  // with which the end marker begins
  for (size_t i = first; i < last; ++i) {
    for (std::string &line : SplitLogLines(lines[i]))
      reply.lines.push_back(std::move(line));
    if (lines[i].empty()) reply.lines.emplace_back();
  }
  return reply;
}

}  // namespace kest::ctl
