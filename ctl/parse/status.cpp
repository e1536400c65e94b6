// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/status.h"

#include <algorithm>
#include <array>
#include <utility>

#include "ctl/parse/lines.h"
#include "ctl/parse/pattern.h"
#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

constexpr std::string_view kTitle = "[AudioStatusInfo]";
constexpr std::string_view kRule = "===============";

// A line of a filter's report and the names of its numbers, those of the parameters where there are such.
struct Shape {
  std::string_view pattern;
  std::array<std::string_view, 10> names;
};

constexpr Shape kShapes[] = {
    {" FrmCnt : Ok=%x,Err=%x", {"OkFrmCnt", "ErrFrmCnt"}},
    {" main/asoc Vol : 0x%x, 0x%x (mute[10]", {"MdVol", "AdVol"}},
    {" dolby drcMode : %x (", {"DrcMode"}},
    {" dmxMode : %x (", {"DmxMode"}},
    {" tb11 : %x (", {"DolbyTb11Enable"}},
    {" rfSignalType : %x (", {"RfSignalType"}},
    {" gain:%d, mute:%d", {"Gain", "Mute"}},
    {" pcm delay:%d, raw delay:%d", {"DelayTime", "RawDelayTime"}},
    {" bSyncEn[%d] bOutputEn[%d] okCnt[%d] skipCnt[%d] emptyCnt[%d] STC[%d] PTS[%d] TD[%d] Status[%d] "
     "(0:invalid, "
     "1:freerun, 2:sync, 3:drop frame) Bypass[%d]",
     {"SyncEnable", "OutputEnable", "FramesPassed", "FramesSkipped", "DataEmpty", "CurrentSTC", "CurrentPTS",
      "TimeDifference", "SyncStatus", "BypassEnable"}},
};

// Counters of the ports; the number of the port becomes part of the name.
struct CounterShape {
  std::string_view mark;  // behind "in[0] " or "out[0] "
  std::string_view name;
};

constexpr CounterShape kCounters[] = {{"underrun:", "underruns"},
                                      {"underrun pcm:", "underruns"},
                                      {"underrun npcm:", "underruns_raw"},
                                      {"overrun:", "overruns"}};

using Values = std::vector<std::pair<std::string, int64_t>>;

bool TakeShape(std::string_view text, Values &values) {
  for (const Shape &shape : kShapes) {
    const auto numbers = MatchPattern(text, shape.pattern);
    if (!numbers) continue;
    for (size_t i = 0; i < numbers->size() && i < shape.names.size(); ++i)
      values.emplace_back(shape.names[i], (*numbers)[i]);
    return true;
  }
  return false;
}

bool TakeCounter(Scanner &scanner, Values &values) {
  Scanner tried = scanner;
  tried.Blanks();
  const std::string_view side = tried.Text("in[") ? "in" : "out";
  unsigned port = 0;
  if (side == "out" && !tried.Text("out[")) return false;
  if (!tried.Number(port) || !tried.Text("] ")) return false;
  for (const CounterShape &counter : kCounters) {
    uint64_t count = 0;
    Scanner number = tried;
    if (!number.Text(counter.mark) || !number.Number(count)) continue;
    values.emplace_back(std::string(side) + std::to_string(port) + "." + std::string(counter.name),
                        static_cast<int64_t>(count));
    scanner = number;
    return true;
  }
  return false;
}

bool TakeCounters(std::string_view text, Values &values) {
  Scanner scanner(text);
  bool any = false;
  while (TakeCounter(scanner, values))
    any = true;
  return any;
}

bool TakeValues(std::string_view text, Values &values) {
  return TakeShape(text, values) || TakeCounters(text, values) || BeginsWith(text, "[Decoder Info]");
}

bool TakeSink(std::string_view line, Values &sink) {
  constexpr std::array<std::string_view, 7> kNames = {"dd", "ddp", "atmos", "dts", "aac", "mat", "dtshd"};
  const auto numbers =
      MatchPattern(line, "[EDID_Arc][Cap] dd:%d, ddp:%d(atmos:%x), dts:%d, aac:%d, mat(truhd):%d, dtshd:%d");
  for (size_t i = 0; numbers && i < kNames.size(); ++i)
    sink.emplace_back(kNames[i], (*numbers)[i]);
  return numbers || BeginsWith(line, "[EDID_Arc][Byte3]");
}

class StatusParser {
 public:
  ParsedStatus Parse(const std::vector<std::string> &lines) {
    for (const std::string &line : lines) {
      TakeLine(line);
      while (!glued_.empty())
        TakeLine(std::exchange(glued_, {}));
    }
    parsed_.isWhole = hasTitle_ && rules_ >= kRules;
    return std::move(parsed_);
  }

 private:
  static constexpr int kRules = 3;

  void TakeLine(std::string_view line) {
    if (line == kRule) {
      ++rules_;
    } else if (line == kTitle) {
      hasTitle_ = true;
    } else if (!IsFrame(line) && !TakePipeline(line) && !TakeFilter(line) && !TakeMore(line) &&
               !TakeSink(line, parsed_.report.sink) && !IsGraph(line) && !IsOfInstrument(line)) {
      parsed_.unknown.emplace_back(line);
    }
  }

  static bool IsFrame(std::string_view line) { return line.empty() || line == "kest_debug_node=status"; }

  // Behind the second rule: names, and "           -> (0)SpeakerOutput".
  [[nodiscard]] bool IsGraph(std::string_view line) const {
    if (rules_ < kRules - 1) return false;
    if (BeginsWith(Trim(line), "-> (")) return true;
    for (const std::string &name : pipelines_) {
      if (name == line) return true;
    }
    return false;
  }

  // "p:Decoder_13           ================="
  bool TakePipeline(std::string_view line) {
    constexpr std::string_view kEnd = " =================";
    if (!BeginsWith(line, "p:") || line.size() < kEnd.size() ||
        line.substr(line.size() - kEnd.size()) != kEnd) {
      return false;
    }
    pipelines_.emplace_back(Trim(line.substr(2, line.size() - 2 - kEnd.size())));
    return true;
  }

  // "p:Decoder_13           f:Volume          gain:0, mute:0"
  bool TakeFilter(std::string_view line) {
    Scanner scanner(line);
    if (!scanner.Text("p:")) return false;
    const auto pipeline = scanner.UpTo(" f:");
    if (!pipeline) return false;
    FilterStatus filter;
    filter.pipeline = Trim(*pipeline);
    const std::string_view rest = scanner.Rest();
    const size_t end = NameEnd(rest);
    filter.name = Trim(rest.substr(0, end));
    parsed_.report.filters.push_back(std::move(filter));
    const std::string_view behind = rest.substr(std::min(end, rest.size()));
    // A filter of an unknown kind reports nothing, not even the end of its line.
    if (behind == kRule || BeginsWith(behind, "p:")) {
      glued_ = behind;
    } else if (!behind.empty()) {
      TakeText(behind);
    }
    return true;
  }

  // The name is padded; behind a longer one the report follows without a gap, but begins with a blank.
  static size_t NameEnd(std::string_view rest) {
    constexpr size_t kNameWidth = 15;
    if (rest.size() <= kNameWidth || rest[kNameWidth - 1] == ' ') return kNameWidth;
    const size_t end = std::min(rest.find(' ', kNameWidth), rest.size());
    const size_t rule = rest.substr(0, end).rfind(kRule);
    return rule != std::string_view::npos && rule + kRule.size() == end && rule > 0 ? rule : end;
  }

  // The report of the last filter goes on.
  bool TakeMore(std::string_view line) {
    if (parsed_.report.filters.empty() || rules_ >= kRules - 1) return false;
    Values values;
    if (!TakeValues(line, values)) return false;
    TakeText(line);
    return true;
  }

  void TakeText(std::string_view text) {
    FilterStatus &filter = parsed_.report.filters.back();
    TakeValues(text, filter.values);
    if (!Trim(text).empty()) filter.text.emplace_back(Trim(text));
  }

  ParsedStatus parsed_;
  std::string_view glued_;  // what follows a filter's report on its line
  std::vector<std::string> pipelines_;
  bool hasTitle_ = false;
  int rules_ = 0;
};

}  // namespace

ParsedStatus ParseStatus(const std::vector<std::string> &lines) {
  return StatusParser().Parse(lines);
}

}  // namespace kest::ctl
