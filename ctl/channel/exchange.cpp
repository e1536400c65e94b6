// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/exchange.h"

#include <algorithm>

#include "ctl/channel/interrupt.h"
#include "ctl/channel/write_failure.h"
#include "ctl/error.h"
#include "ctl/parse/lines.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::microseconds kFirstPause{50};
constexpr std::chrono::microseconds kLongestPause{5000};
constexpr std::chrono::milliseconds kGraceAfterRestart{100};
constexpr const char *kRetryHint = "the log was restarted or replaced meanwhile; repeat the command";

std::string JoinLines(const std::vector<std::string> &lines, const Marker &marker) {
  std::string bytes = marker.Begin() + "\n";
  for (const std::string &line : lines)
    bytes += line + "\n";
  return bytes + marker.End() + "\n";
}

[[noreturn]] void ThrowLost(const std::string &what) {
  throw CtlError(ExitCode::kLost, what, kRetryHint);
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

std::optional<Reply> Exchange::Receive(std::chrono::milliseconds timeout) {
  const auto start = Clock::now();
  for (auto pause = kFirstPause; !TakeMore(); pause = std::min(pause * 5 / 4, kLongestPause)) {
    if (Clock::now() - start > timeout) return std::nullopt;
    if (IsGone()) ThrowLost("the end of the answer was lost");
    Pause(pause);
  }
  if (!begun_ || !IsStillInLog()) ThrowLost("the beginning of the answer was lost");
  Reply reply = CutOut();
  reply.elapsedMs = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  return reply;
}

// After a restart the answer may be gone. It is when all lines have been read and the end has not come soon
// after.
bool Exchange::IsGone() {
  const auto now = Clock::now();
  if (!readSince_ && log_.Restarts() > 0 && host_.UnreadBytes(pipePath_) <= 0) readSince_ = now;
  return readSince_ && now - *readSince_ > kGraceAfterRestart;
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
  if (text_.find(marker_.EndTag()) != std::string::npos)
    keepFrom = std::min(keepFrom, text_.find(marker_.EndTag()));
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
