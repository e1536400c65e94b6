// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>

#include <fmt/format.h>

#include "ctl/channel/interrupt.h"
#include "ctl/channel/log_lines.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"
#include "ctl/commands/option_values.h"
#include "ctl/observe/cpu_clock.h"
#include "ctl/observe/switched_on.h"
#include "ctl/parse/lines.h"
#include "ctl/parse/perf_line.h"
#include "ctl/render/csv.h"
#include "ctl/render/status_line.h"
#include "ctl/render/table.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kDefaultDuration{2000};
constexpr milliseconds kPause{5};
// A pipeline that runs opens its counters in its next cycle.
constexpr milliseconds kStartPatience{1000};
constexpr const char *kNoCounters =
    "MIPS and MCPS cannot be had: the process did not get the CPU's hardware counters";
constexpr const char *kNoCountersHint =
    "virtual machines often have none; else see /proc/sys/kernel/perf_event_paranoid";

struct Measurement {
  const Pipeline *pipeline = nullptr;
  const Filter *filter = nullptr;       // NULL: the whole pipeline
  std::optional<PerfLine> counted;      // by hardware counters, since the start
  std::optional<double> threadPercent;  // of the pipeline's thread

  [[nodiscard]] std::optional<double> CpuPercent() const {
    return counted ? std::optional(counted->cpuPercent) : threadPercent;
  }
};

// The process splits the line at these.
void RefuseSplitNames(const Measurement &what) {
  const std::string names = what.pipeline->name + (what.filter == nullptr ? "" : what.filter->name);
  if (names.find_first_of(",:=") == std::string::npos) return;
  throw CtlError(ExitCode::kNotFound,
                 fmt::format("{} cannot be named: a name ends at a comma or colon", what.pipeline->name));
}

class Perf {
 public:
  Perf(Context &context, const Arguments &arguments)
      : context_(context),
        duration_(SecondsOption(arguments, "seconds").value_or(kDefaultDuration)),
        process_(context.GetChannel().TheProcess()) {
    const Target target = FindTarget(context.GetListing(), arguments.words[0]);
    measurements_.push_back({target.pipeline, target.filter, std::nullopt, std::nullopt});
    if (target.filter != nullptr) return;
    for (const Filter &filter : target.pipeline->filters)
      measurements_.push_back({target.pipeline, &filter, std::nullopt, std::nullopt});
  }

  void Run() {
    for (Measurement &measurement : measurements_)
      RefuseSplitNames(measurement);
    for (Measurement &measurement : measurements_) {
      Measure(measurement);
      if (!hasCounters_) break;  // the others would have nothing at all
    }
  }

  [[nodiscard]] bool HasCounters() const { return hasCounters_; }
  [[nodiscard]] const std::vector<Measurement> &Measurements() const { return measurements_; }

 private:
  void Measure(Measurement &what) {
    const std::string name = what.filter == nullptr
                                 ? what.pipeline->name
                                 : fmt::format("{}:{}", what.pipeline->name, what.filter->name);
    const StatusLine progress(context_.IsSilent());
    LogLines log(context_.GetHost(), context_.GetSettings().directory);
    SwitchedOn target(context_.GetChannel(), {"kest_perf_event_target=none"});
    static_cast<void>(context_.GetChannel().Send(
        {fmt::format("kest_perf_event_target={},{}", what.filter == nullptr ? "pipeline" : "filter", name)}));
    CpuClock cpu(context_.GetHost(), process_.pid);
    cpu.Percents({what.pipeline->tid});
    const std::string start = fmt::format("[PERF_EVENT][{}]Start to record", name);
    bool isStarted = false;
    const auto begin = Clock::now();
    for (auto now = begin; now - begin < duration_; now = Clock::now()) {
      if (!isStarted && what.filter != nullptr && now - begin > kStartPatience) break;
      progress.ShowTime("measuring " + name, std::chrono::duration_cast<milliseconds>(now - begin),
                        duration_);
      Pause(kPause);
      for (const std::string &text : log.Next()) {
        isStarted = isStarted || BeginsWith(text, start);
        const auto line = ParsePerfLine(text);
        if (line && line->name == name) what.counted = line;
      }
    }
    if (context_.GetChannel().TheProcess().pid != process_.pid)
      throw CtlError(ExitCode::kUnreachable, "the process has ended");
    hasCounters_ = isStarted || what.counted;
    const std::map<int, double> percents = cpu.Percents({what.pipeline->tid});
    if (what.filter == nullptr && !percents.empty()) what.threadPercent = percents.begin()->second;
    if (!target.Off()) context_.GetChannel().Warn("the measurement may go on");
  }

  Context &context_;
  milliseconds duration_;
  Process process_;
  bool hasCounters_ = false;
  std::vector<Measurement> measurements_;
};

std::string Show(const std::optional<double> &figure) {
  return figure ? fmt::format("{:.2f}", *figure) : "-";
}

std::vector<std::string> CellsOf(const Measurement &what, const char *missing) {
  const auto shown = [&](const std::optional<double> &figure) {
    return figure ? Show(figure) : std::string(missing);
  };
  const auto &counted = what.counted;
  return {what.pipeline->name,
          what.filter == nullptr ? "" : what.filter->name,
          counted ? std::to_string(counted->cycles) : missing,
          shown(counted ? std::optional(counted->mips) : std::nullopt),
          shown(counted ? std::optional(counted->mcps) : std::nullopt),
          shown(what.CpuPercent())};
}

std::string ShowTable(const std::vector<Measurement> &measurements) {
  constexpr auto kRight = Table::Align::kRight;
  Table table(
      {{"PIPELINE"}, {"FILTER"}, {"CYCLES", kRight}, {"MIPS", kRight}, {"MCPS", kRight}, {"CPU %", kRight}});
  for (const Measurement &what : measurements)
    table.Add(CellsOf(what, "-"));
  return table.Text();
}

std::string ShowCsv(const std::vector<Measurement> &measurements) {
  std::string text = CsvRow({"pipeline", "filter", "cycles", "mips", "mcps", "cpu_percent"});
  for (const Measurement &what : measurements)
    text += CsvRow(CellsOf(what, ""));
  return text;
}

Json RowOf(const Measurement &what) {
  const auto &counted = what.counted;
  const auto cpu = what.CpuPercent();
  return {{"pipeline", ToJson(what.pipeline->name)},
          {"filter", what.filter == nullptr ? Json() : ToJson(what.filter->name)},
          {"cycles", counted ? Json(counted->cycles) : Json()},
          {"mips", counted ? Json(counted->mips) : Json()},
          {"mcps", counted ? Json(counted->mcps) : Json()},
          {"cpu_percent", cpu ? Json(*cpu) : Json()}};
}

// Without counters a filter has no figures at all; a pipeline has those of its thread.
void ExplainMissing(Context &context, const Perf &perf, Result &result) {
  const auto &measurements = perf.Measurements();
  const bool isAny = std::any_of(measurements.begin(), measurements.end(),
                                 [](const Measurement &what) { return what.CpuPercent().has_value(); });
  if (!isAny) {
    result.exit = ExitCode::kRefused;
    result.message = perf.HasCounters() ? "too few cycles: the averages come after 50" : kNoCounters;
    result.hint = perf.HasCounters() ? "measure for more seconds" : kNoCountersHint;
  } else if (!perf.HasCounters()) {
    context.GetChannel().Warn(fmt::format("{}; {}", kNoCounters, kNoCountersHint));
  }
}

}  // namespace

Result RunPerf(Context &context, const Arguments &arguments) {
  Perf perf(context, arguments);
  perf.Run();
  Result result;
  result.data = {{"counters", perf.HasCounters()}, {"rows", Json::array()}};
  for (const Measurement &what : perf.Measurements())
    result.data["rows"].push_back(RowOf(what));
  ExplainMissing(context, perf, result);
  if (result.exit == ExitCode::kDone)
    result.text = arguments.Has("csv") ? ShowCsv(perf.Measurements()) : ShowTable(perf.Measurements());
  return result;
}

}  // namespace kest::ctl
