// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <numeric>

#include <fmt/format.h>

#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"
#include "ctl/commands/option_values.h"
#include "ctl/observe/trace_recorder.h"
#include "ctl/parse/lines.h"
#include "ctl/parse/port_line.h"
#include "ctl/render/output_file.h"
#include "ctl/render/status_line.h"
#include "ctl/render/table.h"
#include "ctl/render/trace_json.h"

namespace kest::ctl {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kDefaultDuration{2000};
constexpr int kDefaultLevelsMs = 100;
constexpr const char *kDefaultFile = "trace.json";

// How long the cycles took in which nothing was printed.
struct CycleTimes {
  size_t cycles = 0;  // all
  uint64_t meanUs = 0;
  uint64_t p99Us = 0;
  uint64_t maxUs = 0;
};

CycleTimes TimesOf(const PipelineTrace &trace) {
  std::vector<uint64_t> times;
  for (const Cycle &cycle : trace.cycles) {
    if (!cycle.hasPrinted) times.push_back(cycle.endUs - cycle.startUs);
  }
  CycleTimes result;
  result.cycles = trace.cycles.size();
  if (times.empty()) return result;
  std::sort(times.begin(), times.end());
  result.meanUs = std::accumulate(times.begin(), times.end(), uint64_t{0}) / times.size();
  result.p99Us = times[(times.size() * 99 + 99) / 100 - 1];
  result.maxUs = times.back();
  return result;
}

Json RowOf(const TraceTrack &track) {
  const CycleTimes times = TimesOf(track.trace);
  return {{"name", ToJson(track.trace.pipeline)},
          {"cycles", times.cycles},
          {"repaired", track.trace.repaired},
          {"dropped", track.trace.dropped},
          {"mean_us", times.meanUs},
          {"p99_us", times.p99Us},
          {"max_us", times.maxUs}};
}

std::string ShowTimes(const TraceDocument &document) {
  constexpr auto kRight = Table::Align::kRight;
  Table table(
      {{"PIPELINE"}, {"CYCLES", kRight}, {"MEAN us", kRight}, {"P99 us", kRight}, {"MAX us", kRight}});
  for (const TraceTrack &track : document.tracks) {
    const CycleTimes times = TimesOf(track.trace);
    table.Add({track.trace.pipeline, std::to_string(times.cycles), std::to_string(times.meanUs),
               std::to_string(times.p99Us), std::to_string(times.maxUs)});
  }
  return table.Text();
}

Result ResultOf(const TraceDocument &document, const std::string &path) {
  size_t cycles = 0;
  size_t repaired = 0;
  size_t dropped = 0;
  Json pipelines = Json::array();
  for (const TraceTrack &track : document.tracks) {
    cycles += track.trace.cycles.size();
    repaired += track.trace.repaired;
    dropped += track.trace.dropped;
    pipelines.push_back(RowOf(track));
  }
  Result result;
  result.data = {{"file", ToJson(path)},
                 {"cycles", cycles},
                 {"repaired", repaired},
                 {"dropped", dropped},
                 {"pipelines", std::move(pipelines)}};
  result.text =
      ShowTimes(document) + fmt::format("{} is for a trace viewer, such as ui.perfetto.dev\n", path);
  return result;
}

Result Record(Context &context, const Arguments &arguments, OutputFile &file, const std::string &path) {
  TraceWish wish;
  wish.duration = SecondsOption(arguments, "seconds").value_or(kDefaultDuration);
  wish.levelsEvery =
      milliseconds(WholeOption(arguments, "levels", {0, kMostWhole}).value_or(kDefaultLevelsMs));
  for (const std::string &word : arguments.words) {
    const Target target = FindTarget(context.GetListing(), word);
    if (target.filter != nullptr) {
      throw CtlError(ExitCode::kNotFound, fmt::format("{} is a filter; pipelines are traced", word),
                     fmt::format("trace {}", target.pipeline->name));
    }
    if (std::find(wish.pipelines.begin(), wish.pipelines.end(), target.pipeline) == wish.pipelines.end())
      wish.pipelines.push_back(target.pipeline);
  }
  const StatusLine progress(context.IsSilent());
  wish.progress = [&](milliseconds elapsed) { progress.ShowTime("tracing", elapsed, wish.duration); };
  const Recording recording = RecordTrace(context, wish);
  file.Write(TraceJson(recording.document));
  Result result = ResultOf(recording.document, path);
  result.exit = recording.exit;
  if (recording.exit != ExitCode::kDone)
    result.message = fmt::format("{}; {} holds what was recorded before", recording.message, path);
  return result;
}

// A file may be a trace, or a log with port lines.
void Take(TraceDocument &document, Host &host, const std::string &path) {
  const std::string text = ReadWhole(host, path);
  const size_t portLines = document.portLines.size();
  for (const std::string &line : SplitLogLines(text)) {
    const auto parsed = ParsePortLine(line);
    if (parsed && parsed->kind == PortLine::Kind::kPcm) document.portLines.push_back(*parsed);
  }
  if (document.portLines.size() > portLines) return;
  TraceTrack track = {TraceIn(text, path), static_cast<int>(document.tracks.size()) + 1, {}};
  if (track.trace.pipeline.empty())
    throw CtlError(ExitCode::kLost, fmt::format("{} holds neither a whole cycle nor port lines", path));
  document.tracks.push_back(std::move(track));
}

Result Convert(Context &context, const Arguments &arguments, OutputFile &file, const std::string &path) {
  TraceDocument document;
  document.process = "kest";
  document.pid = 1;
  for (const std::string &word : arguments.words)
    Take(document, context.GetHost(), word);
  NotePrinted(document);
  file.Write(TraceJson(document));
  return ResultOf(document, path);
}

}  // namespace

Result RunTrace(Context &context, const Arguments &arguments) {
  const std::string path = arguments.Option("output").value_or(kDefaultFile);
  if (!arguments.Has("convert")) static_cast<void>(context.GetListing());
  OutputFile file(path);
  return arguments.Has("convert") ? Convert(context, arguments, file, path)
                                  : Record(context, arguments, file, path);
}

}  // namespace kest::ctl
