// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/latency.h"

#include <algorithm>
#include <cstdio>
#include <thread>

#include <fmt/format.h>
#include <unistd.h>

#include "ctl/audio/burst.h"
#include "ctl/audio/distribution.h"
#include "ctl/audio/dump_layout.h"
#include "ctl/channel/interrupt.h"
#include "ctl/channel/log_lines.h"
#include "ctl/channel/marker.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/option_values.h"
#include "ctl/commands/selection.h"
#include "ctl/model/level.h"
#include "ctl/observe/switched_on.h"
#include "ctl/observe/written_files.h"
#include "ctl/parse/lines.h"
#include "ctl/render/escape.h"
#include "ctl/render/status_line.h"
#include "ctl/render/table.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPoll{10};
constexpr std::chrono::milliseconds kLastCycle{20};   // one that is in progress may still write
constexpr std::chrono::milliseconds kLookAgain{500};  // whether the process still runs
constexpr std::chrono::seconds kInsertPatience{30};   // 500 cycles are silenced first
constexpr size_t kMostRecordingBytes = 32 << 20;
constexpr size_t kTextBins = 10;
constexpr size_t kBarColumns = 50;

struct Run {
  bool isInserted = false;
  bool isFound = false;
  bool isExact = false;
  unsigned rate = 0;
  double ms = 0.0;
  int64_t samples = 0;
  uint64_t processingUs = 0;
};

struct Ends {
  Target from;
  Target to;
  Selection start;
  Selection end;
};

struct Recordings {
  std::string all;
  std::string fromHit;
};

const Port *FirstPort(const Filter &filter, bool isInput) {
  const auto found = std::find_if(filter.ports.begin(), filter.ports.end(),
                                  [&](const Port &port) { return port.isInput == isInput; });
  return found == filter.ports.end() ? nullptr : &*found;
}

void NeedPort(const Target &target, bool isInput) {
  if (FirstPort(*target.filter, isInput) != nullptr) return;
  throw CtlError(ExitCode::kNotFound,
                 fmt::format("{} has no {}", FullName(target),
                             isInput ? "input, into which the burst could go" : "output to look at"));
}

bool Is32Bit(const Port &port) {
  for (size_t group = 0; group < kGroupChannels.size(); ++group) {
    if (port.groupBytes[group] != 0)
      return port.groupBytes[group] == port.pcm.size * kGroupChannels[group] * sizeof(int32_t);
  }
  return false;
}

// The process looks for the burst in the two-channel group alone.
void NeedPairOfChannels(const Target &target) {
  if (FirstPort(*target.filter, false)->groupBytes[0] != 0) return;
  throw CtlError(ExitCode::kNotFound,
                 fmt::format("{} has no one or two channels in its output, which alone are looked at",
                             FullName(target)));
}

Ends EndsOf(const Listing &listing, const Arguments &arguments) {
  Ends ends = {FindFilter(listing, arguments.words[0]), FindFilter(listing, arguments.words[1]), {}, {}};
  NeedPort(ends.from, true);
  NeedPort(ends.to, false);
  NeedPairOfChannels(ends.to);
  const size_t room = kLongestLine - sizeof("kest_latency_start_filter=");
  ends.start = SelectionOf(listing, ends.from, room, true);
  ends.end = SelectionOf(listing, ends.to, room, true);
  return ends;
}

std::vector<std::string> LinesFor(const Selection &start, const Selection &end) {
  return {"kest_latency_start_filter=" + start.Text(), "kest_latency_end_filter=" + end.Text()};
}

void AskForConsent(const Ends &ends, int repeat) {
  const std::string what = fmt::format(
      "this silences what comes into {} for 500 cycles, about three seconds in most hosts, {} time{}",
      FullName(ends.from), repeat, repeat == 1 ? "" : "s");
  if (isatty(STDIN_FILENO) == 0) {
    throw CtlError(ExitCode::kUsage, what, "nobody can be asked here: say that you mean it with --yes");
  }
  fmt::print(stderr, "kestctl: {}\n         go on? [y/N] ", Escape(what));
  std::fflush(stderr);
  char answer[64] = {};
  const ssize_t count = read(STDIN_FILENO, answer, sizeof(answer) - 1);
  ThrowIfInterrupted();
  if (count > 0 && (answer[0] == 'y' || answer[0] == 'Y')) return;
  throw CtlError(ExitCode::kRefused, "not measured");
}

class Measurement {
 public:
  Measurement(Context &context, const Ends &ends, std::chrono::duration<double> patience)
      : context_(context),
        channel_(context.GetChannel()),
        ends_(ends),
        patience_(std::chrono::duration_cast<Clock::duration>(patience)) {}
  ~Measurement() { RemoveFiles(); }
  Measurement(const Measurement &) = delete;
  Measurement &operator=(const Measurement &) = delete;

  Run Measure(const StatusLine &progress, const std::string &which) {
    SwitchedOn on(channel_, {"kest_latency=off"});
    NameFiles(SwitchOn());
    log_.emplace(context_.GetHost(), context_.GetSettings().directory);
    channel_.Send(LinesFor(ends_.start, ends_.end));
    Wait(progress, which);
    on.Off();
    return RunOf();
  }

 private:
  unsigned SwitchOn();
  void NameFiles(unsigned number);
  void Wait(const StatusLine &progress, const std::string &which);
  void TakeLog();
  [[nodiscard]] Run RunOf();
  [[nodiscard]] Recordings ReadRecordings();
  void RemoveFiles() noexcept;

  Context &context_;
  Channel &channel_;
  const Ends &ends_;
  const Clock::duration patience_;
  std::optional<LogLines> log_;
  LatencyReport report_;
  std::string allPath_;
  std::string hitPath_;
  uint64_t allBefore_ = 0;
  uint64_t hitBefore_ = 0;
};

// Nothing is selected at first: the measurement's number, which only the level info shows, is known before
// its files are written. The off before takes away marks that a cycle may have left behind.
unsigned Measurement::SwitchOn() {
  const ProcessSettings settings = channel_.AskSettings();
  const Level *level = FindLevel(settings.level);
  const bool mustRaise = settings.level < FindLevel("info")->number && level != nullptr;
  std::vector<std::string> lines = LinesFor(NoSelection(), NoSelection());
  lines.insert(lines.begin(), "kest_latency=off");
  if (mustRaise) lines.emplace_back("kest_log_level=info");
  lines.emplace_back("kest_latency=on");
  if (mustRaise) lines.push_back(fmt::format("kest_log_level={}", level->name));
  const auto number = ParseLatencyRun(channel_.Send(lines).lines);
  if (!number) throw CtlError(ExitCode::kLost, "the process did not say that it measures");
  return *number;
}

void Measurement::NameFiles(unsigned number) {
  std::string name = fmt::format("{}{}_{}.pcm", ends_.start.filter, ends_.to.filter->name, number);
  std::replace(name.begin(), name.end(), '/', '_');
  allPath_ = context_.GetSettings().directory + "Out" + name;
  hitPath_ = context_.GetSettings().directory + "OutSig" + name;
  allBefore_ = context_.GetHost().Look(allPath_).size;
  hitBefore_ = context_.GetHost().Look(hitPath_).size;
}

void Measurement::TakeLog() {
  for (const std::string &line : log_->Next())
    TakeLatencyLine(WithoutColours(line), report_);
}

void Measurement::Wait(const StatusLine &progress, const std::string &which) {
  auto deadline = Clock::now() + kInsertPatience;
  auto lookAt = Clock::now() + kLookAgain;
  bool wasInserted = false;
  while (Clock::now() < deadline) {
    TakeLog();
    if (report_.IsWhole()) return;
    if (report_.isInserted && !wasInserted) {
      wasInserted = true;
      deadline = Clock::now() + patience_;
    }
    progress.Show(which + (wasInserted ? "waiting for the burst" : "silencing"));
    if (Clock::now() > lookAt) {
      if (channel_.IsDeserted()) throw CtlError(ExitCode::kUnreachable, "the process has ended");
      lookAt = Clock::now() + kLookAgain;
    }
    Pause(kPoll);
  }
}

Recordings Measurement::ReadRecordings() {
  const auto read = [this](const std::string &path, uint64_t from) {
    return context_.GetHost().Read(path, from, kMostRecordingBytes).bytes;
  };
  return {read(allPath_, allBefore_), read(hitPath_, hitBefore_)};
}

Run Measurement::RunOf() {
  Run run;
  run.isInserted = report_.isInserted;
  run.isFound = report_.IsWhole();
  if (!run.isFound) return run;
  const Port &output = *FirstPort(*ends_.to.filter, false);
  const Port &input = *FirstPort(*ends_.from.filter, true);
  const unsigned width = report_.bits / 8;
  run.rate = report_.rate;
  run.processingUs = *report_.processingUs;
  run.samples = width == 0 ? 0 : static_cast<int64_t>(*report_.totalBytes / width);
  if (width == 4 && Is32Bit(input)) {
    const Recordings recordings = ReadRecordings();
    const bool hasWordBehindRing = output.groupBytes[0] >= output.pcm.size * 4 + 4;
    const auto exact = ExactSamples(report_, {recordings.all, recordings.fromHit}, hasWordBehindRing);
    run.isExact = exact.has_value();
    run.samples = exact.value_or(run.samples);
  }
  run.ms = static_cast<double>(run.samples) * 1000.0 / std::max(run.rate, 1u);
  return run;
}

// Whatever ended the measurement, which is off by now. Files that were there before are not its own.
void Measurement::RemoveFiles() noexcept {
  std::this_thread::sleep_for(kLastCycle);
  std::vector<std::string> paths;
  if (allBefore_ == 0) paths.push_back(allPath_);
  if (hitBefore_ == 0) paths.push_back(hitPath_);
  RemoveWrittenFiles(channel_, paths);
}

Json RunJson(const Run &run) {
  Json json = {{"found", run.isFound}};
  if (!run.isFound) return json;
  json.update(
      {{"ms", run.ms}, {"samples", run.samples}, {"proc_us", run.processingUs}, {"exact", run.isExact}});
  return json;
}

Json BinsJson(const Distribution &distribution) {
  Json bins = Json::array();
  for (const Bin &bin : distribution.bins)
    bins.push_back({{"from_ms", bin.from}, {"to_ms", bin.to}, {"count", bin.count}});
  return bins;
}

std::string ShowRuns(const std::vector<Run> &runs) {
  Table table({{"RUN", Table::Align::kRight},
               {"SAMPLES", Table::Align::kRight},
               {"MS", Table::Align::kRight},
               {"PASSED MS", Table::Align::kRight},
               {"NOTE"}});
  for (size_t i = 0; i < runs.size(); ++i) {
    const Run &run = runs[i];
    if (!run.isFound) {
      table.Add({fmt::format("{}", i + 1), "-", "-", "-", "no burst found"});
      continue;
    }
    table.Add({fmt::format("{}", i + 1), fmt::format("{}", run.samples), fmt::format("{:.3f}", run.ms),
               fmt::format("{:.3f}", static_cast<double>(run.processingUs) / 1000.0),
               run.isExact ? "" : "not exact"});
  }
  return table.Text();
}

std::string ShowDistribution(const Distribution &distribution) {
  std::string text = fmt::format("minimum {:.3f} ms, median {:.3f} ms, maximum {:.3f} ms\n",
                                 distribution.least, distribution.median, distribution.most);
  if (distribution.bins.size() < 2) return text;
  size_t most = 1;
  for (const Bin &bin : distribution.bins)
    most = std::max(most, bin.count);
  for (const Bin &bin : distribution.bins) {
    text += fmt::format("{:>10.3f} ms {:>5}  {}\n", bin.from, bin.count,
                        std::string((bin.count * kBarColumns + most - 1) / most, '#'));
  }
  return text;
}

// Why the burst is missing in some of the runs.
void Explain(const std::vector<Run> &runs, const Ends &ends, Result &result) {
  const auto isLost = [](const Run &run) { return !run.isFound; };
  const auto lost = std::count_if(runs.begin(), runs.end(), isLost);
  if (lost == 0) return;
  result.exit = ExitCode::kRefused;
  result.message = fmt::format("no burst found in {} of {} runs", lost, runs.size());
  const bool wasInserted = std::find_if(runs.begin(), runs.end(), isLost)->isInserted;
  result.hint =
      wasInserted
          ? fmt::format(
                "it went into {} but did not come out of {}: is that behind it, and not muted? "
                "--wait gives it longer",
                FullName(ends.from), FullName(ends.to))
          : fmt::format("{} gets no sound into which it could be put: does it run?", FullName(ends.from));
}

Result ResultOf(const std::vector<Run> &runs, const Ends &ends, Channel &channel) {
  Result result;
  std::vector<double> found;
  Json all = Json::array();
  bool isExact = true;
  unsigned rate = 0;
  for (const Run &run : runs) {
    all.push_back(RunJson(run));
    if (!run.isFound) continue;
    found.push_back(run.ms);
    rate = run.rate;
    isExact = isExact && run.isExact;
  }
  result.data = {{"from", ToJson(FullName(ends.from))},
                 {"to", ToJson(FullName(ends.to))},
                 {"rate", rate},
                 {"runs", all},
                 {"ms", nullptr},
                 {"histogram", Json::array()}};
  result.text = ShowRuns(runs);
  if (!found.empty()) {
    const Distribution distribution = DistributionOf(found, kTextBins);
    result.data["ms"] = {
        {"min", distribution.least}, {"median", distribution.median}, {"max", distribution.most}};
    result.data["histogram"] = BinsJson(distribution);
    result.text += ShowDistribution(distribution);
  }
  if (!isExact)
    channel.Warn(
        "not exact: only where all ports have 32 bits and nothing else sounds is it exact to the sample");
  Explain(runs, ends, result);
  return result;
}

}  // namespace

Result RunLatency(Context &context, const Arguments &arguments) {
  const int repeat = WholeOption(arguments, "repeat", {1, 10000}).value_or(1);
  const std::chrono::duration<double> patience(RealOption(arguments, "wait", {0.001, 3600}).value_or(5.0));
  const Ends ends = EndsOf(context.GetListing(), arguments);
  if (!arguments.Has("yes")) AskForConsent(ends, repeat);
  const StatusLine progress(context.IsSilent());
  std::vector<Run> runs;
  runs.reserve(static_cast<size_t>(repeat));
  for (int i = 0; i < repeat; ++i) {
    runs.push_back(
        Measurement(context, ends, patience).Measure(progress, fmt::format("{} of {}: ", i + 1, repeat)));
  }
  return ResultOf(runs, ends, context.GetChannel());
}

}  // namespace kest::ctl
