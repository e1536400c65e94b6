// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdio>

#include <fmt/format.h>

#include "ctl/channel/interrupt.h"
#include "ctl/channel/log_follower.h"
#include "ctl/channel/log_tail.h"
#include "ctl/channel/marker.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/option_values.h"
#include "ctl/parse/lines.h"
#include "ctl/parse/log_line.h"
#include "ctl/render/escape.h"
#include "ctl/render/live_output.h"

namespace kest::ctl {
namespace {

constexpr std::chrono::milliseconds kFollowPause{50};
constexpr int kDefaultLines = 20;

// From serious to talkative, as in the prefixes. PRINT lines have no level.
constexpr std::string_view kSeverities[] = {"ERR", "WRN", "INFO", "TRACE", "ENTER", "EXIT"};

struct Severity {
  const char *option;
  size_t last;  // index of the least serious that passes
};

constexpr Severity kSeverityOptions[] = {{"err", 0}, {"wrn", 1}, {"info", 2}, {"trace", 3}, {"all", 5}};

// Nobody reads the log for the lines by which answers are found, nor for those between commands.
bool IsNoise(const LogLine &line) {
  return line.text.empty() || Marker::IsEcho(line.text);
}

class LineChoice {
 public:
  explicit LineChoice(const Arguments &arguments)
      : isRaw_(arguments.Has("raw")), tid_(WholeOption(arguments, "tid", {1, kMostWhole}).value_or(0)) {
    const auto level = arguments.Option("level");
    if (!level) return;
    const auto found = std::find_if(std::begin(kSeverityOptions), std::end(kSeverityOptions),
                                    [&](const Severity &severity) { return *level == severity.option; });
    if (found == std::end(kSeverityOptions)) {
      throw CtlError(ExitCode::kUsage, fmt::format("--level: lines have no level \"{}\"", *level),
                     "there are err, wrn, info, trace and all");
    }
    lastSeverity_ = found->last;
  }

  [[nodiscard]] bool Takes(const LogLine &line) const {
    if (tid_ != 0 && line.tid != tid_) return false;
    if (!isRaw_ && IsNoise(line)) return false;
    if (!lastSeverity_) return true;
    for (size_t i = 0; i <= *lastSeverity_; ++i) {
      if (line.level == kSeverities[i]) return true;
    }
    return false;
  }

 private:
  bool isRaw_;
  int tid_;
  std::optional<size_t> lastSeverity_;
};

class LineWriter {
 public:
  LineWriter(const Context &context, const Arguments &arguments)
      : plain_(arguments.Has("plain")), colour_(context.UsesColour()), json_(context.GetSettings().json) {}

  [[nodiscard]] std::string Show(const std::string &text, const LogLine &line) const {
    if (plain_) return Escape(WithoutColours(line.text));
    return colour_ ? EscapeButColours(text) : Escape(WithoutColours(text));
  }

  void Print(const std::string &text, const LogLine &line) const {
    const std::string shown = json_ ? Dump(ToJson(line)) : Show(text, line);
    fmt::print("{}\n", shown);
  }

 private:
  bool plain_;
  bool colour_;
  bool json_;
};

[[noreturn]] void Follow(Context &context, const LineChoice &choice, const LineWriter &writer,
                         uint64_t from) {
  LogFollower log(context.GetHost(), context.GetSettings().directory + "KestLog.txt");
  log.GoTo(from);
  std::string rest;
  while (true) {
    const int restarts = log.Restarts();
    const std::string more = log.ReadMore();
    if (log.Restarts() != restarts) {
      rest.clear();
      if (!context.GetSettings().quiet) fmt::print(stderr, "kestctl: the log was restarted\n");
    }
    rest += more;
    const size_t end = rest.rfind('\n') + 1;  // 0 when there is none
    for (const std::string &text : SplitLogLines(std::string_view(rest).substr(0, end))) {
      const LogLine line = ParseLogLine(text);
      if (choice.Takes(line)) writer.Print(text, line);
    }
    rest.erase(0, end);
    if (more.empty()) {
      FlushOutput();
      Pause(kFollowPause);
    }
  }
}

}  // namespace

Result RunLog(Context &context, const Arguments &arguments) {
  const LineChoice choice(arguments);
  const LineWriter writer(context, arguments);
  const auto takes = [&](const std::string &text) { return choice.Takes(ParseLogLine(text)); };
  const auto count =
      static_cast<size_t>(WholeOption(arguments, "lines", {0, kMostWhole}).value_or(kDefaultLines));
  const LogTail tail =
      ReadTail(context.GetHost(), context.GetSettings().directory + "KestLog.txt", count, takes);
  if (arguments.Has("follow")) {
    for (const std::string &text : tail.lines)
      writer.Print(text, ParseLogLine(text));
    Follow(context, choice, writer, tail.end);
  }
  Result result;
  result.data["lines"] = Json::array();
  for (const std::string &text : tail.lines) {
    const LogLine line = ParseLogLine(text);
    result.data["lines"].push_back(ToJson(line));
    result.text += writer.Show(text, line) + "\n";
  }
  return result;
}

}  // namespace kest::ctl
