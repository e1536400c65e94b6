// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/trace_recorder.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/channel/interrupt.h"
#include "ctl/observe/port_sampler.h"
#include "ctl/observe/switched_on.h"
#include "ctl/parse/lines.h"
#include "ctl/parse/trace.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr const char *kCommand = "kest_debug_filter_io=";
constexpr size_t kPieceBytes = size_t{1024} * 1024;
constexpr milliseconds kWindow{25};
constexpr milliseconds kPause{20};

// The words of the command cannot be names of pipelines, nor what it splits names at.
void RefuseUnnameable(const Pipeline &pipeline) {
  constexpr std::string_view kWords[] = {"stop", "restart", "release", "print_watch_list", "KestLog"};
  const bool isWord = std::find(std::begin(kWords), std::end(kWords), pipeline.name) != std::end(kWords);
  if (!isWord && pipeline.name.find_first_of(",/") == std::string::npos) return;
  throw CtlError(ExitCode::kNotFound, fmt::format("{} cannot be traced because of its name", pipeline.name));
}

// The process compares beginnings, and the lines of filters name no pipeline.
void RefuseAmbiguous(const Listing &listing, const Pipeline &pipeline) {
  for (const Pipeline &other : listing.pipelines) {
    if (&other == &pipeline || !BeginsWith(other.name, pipeline.name)) continue;
    throw CtlError(
        ExitCode::kNotFound,
        fmt::format("{} cannot be traced alone: its name is the beginning of {}", pipeline.name, other.name));
  }
}

// Releasing forgets what everybody watches.
void RefuseWhileWatched(Channel &channel) {
  for (const std::string &line : channel.Ask({std::string(kCommand) + "print_watch_list"}).lines) {
    if (!BeginsWith(line, "idx:")) continue;
    throw CtlError(ExitCode::kRefused, fmt::format("pipelines are being traced already: {}", Trim(line)),
                   fmt::format("wait for who does it, or end it: kestctl send {}release", kCommand));
  }
}

void Watch(Channel &channel, const Pipeline &pipeline) {
  const Verdict verdict = channel.Change(kCommand + pipeline.name);
  if (verdict.accepted.value_or(true)) return;
  throw CtlError(ExitCode::kRefused, fmt::format("{} cannot be traced", pipeline.name),
                 fmt::format("the process says: {}", fmt::join(verdict.reported, "; ")));
}

std::vector<std::string> OffLines() {
  return {std::string(kCommand) + "stop", std::string(kCommand) + "release"};
}

void SwitchOn(Channel &channel, const std::vector<const Pipeline *> &pipelines) {
  for (const Pipeline *pipeline : pipelines)
    Watch(channel, *pipeline);
  static_cast<void>(channel.Send({std::string(kCommand) + "restart"}));
}

std::string PathOf(Context &context, const Pipeline &pipeline) {
  return fmt::format("{}{}.txt", context.GetSettings().directory, pipeline.name);
}

// Not through a link, which could lead anywhere.
std::string ReadOwn(Context &context, const std::string &path) {
  if (context.GetHost().Look(path).kind == FileKind::kRegular) return ReadWhole(context.GetHost(), path);
  throw CtlError(ExitCode::kRefused, fmt::format("the process has written no {}", path));
}

// Until the time is over, or something ends it.
void Wait(Context &context, const TraceWish &wish, Recording &recording) {
  const std::vector<FilterKey> filters = DistinctFilters(context.GetListing());
  const int pid = recording.document.pid;
  const auto start = Clock::now();
  auto nextLevels = start;
  for (auto now = start; now - start < wish.duration; now = Clock::now()) {
    wish.progress(std::chrono::duration_cast<milliseconds>(now - start));
    if (context.GetChannel().TheProcess().pid != pid)
      throw CtlError(ExitCode::kUnreachable, "the process has ended");
    if (wish.levelsEvery.count() > 0 && now >= nextLevels) {
      nextLevels = now + wish.levelsEvery;
      const PortSample sample = SamplePorts(context.GetChannel(), filters, kWindow);
      recording.document.portLines.insert(recording.document.portLines.end(), sample.all.begin(),
                                          sample.all.end());
    }
    const auto left = std::chrono::ceil<milliseconds>(wish.duration - (Clock::now() - start));
    Pause(std::clamp(left, milliseconds(0), std::min(kPause, std::max(wish.levelsEvery, milliseconds(1)))));
  }
}

}  // namespace

std::string ReadWhole(Host &host, const std::string &path) {
  std::string text;
  while (true) {
    const FilePart part = host.Read(path, text.size(), kPieceBytes);
    if (part.facts.kind != FileKind::kRegular) {
      throw CtlError(ExitCode::kUnreachable,
                     fmt::format("{} {}", path,
                                 part.facts.kind == FileKind::kDenied ? "may not be read" : "is no file"));
    }
    if (part.bytes.empty()) return text;
    text += part.bytes;
  }
}

PipelineTrace TraceIn(const std::string &text, const std::string &path) {
  ParsedTrace parsed = ParseTrace(text);
  if (parsed.pipelines.size() <= 1) return std::move(parsed.trace);
  throw CtlError(ExitCode::kLost,
                 fmt::format("{} mixes the pipelines {}", path, fmt::join(parsed.pipelines, ", ")),
                 "their names begin alike, and its lines do not tell whose filters ran");
}

void NotePrinted(TraceDocument &document) {
  std::map<std::string, std::vector<uint64_t>> times;
  for (const PortLine &line : document.portLines)
    times[line.pipeline].push_back(line.timeUs);
  for (TraceTrack &track : document.tracks) {
    std::vector<uint64_t> &own = times[track.trace.pipeline];
    std::sort(own.begin(), own.end());
    for (Cycle &cycle : track.trace.cycles) {
      const auto first = std::lower_bound(own.begin(), own.end(), cycle.startUs);
      cycle.hasPrinted = first != own.end() && *first <= cycle.endUs;
    }
  }
}

Recording RecordTrace(Context &context, const TraceWish &wish) {
  Channel &channel = context.GetChannel();
  const Process process = channel.TheProcess();
  for (const Pipeline *pipeline : wish.pipelines) {
    RefuseUnnameable(*pipeline);
    RefuseAmbiguous(context.GetListing(), *pipeline);
  }
  RefuseWhileWatched(channel);
  Recording recording;
  recording.document.process = process.name;
  recording.document.pid = process.pid;
  {
    SwitchedOn trace(channel, OffLines());
    SwitchOn(channel, wish.pipelines);
    try {
      Wait(context, wish, recording);
    } catch (const CtlError &error) {
      recording.exit = error.Code();
      recording.message = error.what();
    }
    trace.Off();
  }
  const HoldingInterrupts holding;
  for (const Pipeline *pipeline : wish.pipelines) {
    const std::string path = PathOf(context, *pipeline);
    TraceTrack track = {TraceIn(ReadOwn(context, path), path), pipeline->tid, pipeline->feeds};
    track.trace.pipeline = pipeline->name;
    recording.document.tracks.push_back(std::move(track));
  }
  NotePrinted(recording.document);
  return recording;
}

std::string RecordTraceText(Context &context, const Pipeline &pipeline, milliseconds duration) {
  Channel &channel = context.GetChannel();
  RefuseUnnameable(pipeline);
  RefuseWhileWatched(channel);
  SwitchedOn trace(channel, OffLines());
  SwitchOn(channel, {&pipeline});
  Pause(duration);
  trace.Off();
  return ReadOwn(context, PathOf(context, pipeline));
}

}  // namespace kest::ctl
