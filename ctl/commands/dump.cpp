// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/dump.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <limits>
#include <thread>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/audio/dump_files.h"
#include "ctl/audio/dump_layout.h"
#include "ctl/channel/interrupt.h"
#include "ctl/channel/marker.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/option_values.h"
#include "ctl/commands/selection.h"
#include "ctl/model/port_name.h"
#include "ctl/observe/switched_on.h"
#include "ctl/observe/written_files.h"
#include "ctl/render/status_line.h"
#include "ctl/render/table.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPoll{50};
constexpr std::chrono::milliseconds kLastCycle{20};  // one that is in progress may still be dumped
constexpr double kSlowness = 1.5;                    // how much longer than the sound lasts a dump may take
constexpr std::chrono::seconds kPatience{3};
constexpr int64_t kFreeBytesLeft = 16 << 20;
constexpr size_t kLongestPath = 127;  // to which a process cuts the paths of dumps

struct Sides {
  const char *word;  // in the commands
  bool input;
  bool output;
};

constexpr Sides kInput = {"input", true, false};
constexpr Sides kOutput = {"output", false, true};
constexpr Sides kBoth = {"io", true, true};

struct Wishes {
  Sides sides;
  double seconds;
  unsigned rate;
  std::optional<int> bits;
  std::optional<int> channels;
  std::string directory;
};

// A channel group of a port.
struct Stream {
  const Port *port;
  size_t group;
  WavFormat layout;
  std::string path;     // that the process writes
  uint64_t before = 0;  // bytes that the file had before the dump
};

// Metadata or raw data of a port.
struct DataFile {
  const Port *port;
  const char *kind;  // the end of its name
  std::string path;
  uint64_t before = 0;
};

Wishes WishesOf(const Arguments &arguments) {
  Wishes wishes = {};
  wishes.sides = arguments.Has("in") == arguments.Has("out") ? kBoth : arguments.Has("in") ? kInput : kOutput;
  wishes.seconds = RealOption(arguments, "seconds", {0.001, 86400}).value_or(5.0);
  wishes.rate = static_cast<unsigned>(WholeOption(arguments, "rate", {1000, 768000}).value_or(48000));
  wishes.bits = WholeOption(arguments, "bits", {16, 32});
  if (wishes.bits && *wishes.bits % 8 != 0) {
    throw CtlError(ExitCode::kUsage, "--bits: samples have 16, 24 or 32 bits");
  }
  wishes.channels = WholeOption(arguments, "channels", {1, 10});
  wishes.directory = arguments.Option("output").value_or(".");
  return wishes;
}

bool IsWanted(const Port &port, const Sides &sides) {
  return port.isInput ? sides.input : sides.output;
}

class DumpRun {
 public:
  DumpRun(Context &context, const Target &target, Wishes wishes)
      : context_(context), target_(target), wishes_(std::move(wishes)) {
    FindStreams();
    CheckSize();
    std::error_code error;
    std::filesystem::create_directories(wishes_.directory, error);
    if (error) {
      throw CtlError(ExitCode::kUnreachable,
                     fmt::format("cannot make {}: {}", wishes_.directory, error.message()));
    }
  }

  ~DumpRun() { RemoveFiles(); }
  DumpRun(const DumpRun &) = delete;
  DumpRun &operator=(const DumpRun &) = delete;

  Result Run() {
    const bool isInterrupted = Record();
    Result result = Keep();
    if (isInterrupted) {
      result.exit = ExitCode::kInterrupted;
      result.message = "interrupted; what was dumped until then is kept";
    }
    return result;
  }

 private:
  void FindStreams();
  void CheckSize();
  bool Record();
  void SwitchOn(const Selection &selection);
  void NameFiles(std::optional<unsigned> inputRun, std::optional<unsigned> outputRun);
  void WaitUntilDumped();
  [[nodiscard]] uint64_t WantedFrames() const;
  uint64_t SizeOf(const std::string &path) { return context_.GetHost().Look(path).size; }
  uint64_t FramesOf(const Stream &stream) {
    const uint64_t size = SizeOf(stream.path);
    return size < stream.before ? 0 : (size - stream.before) / stream.layout.FrameBytes();
  }
  Result Keep();
  void KeepStream(const Stream &stream, Json &files, Table &table);
  void KeepData(const DataFile &file, Json &files, Table &table);
  [[nodiscard]] std::string PathFor(const Port &port, const std::string &end) const;
  void RemoveFiles() noexcept;

  Context &context_;
  const Target target_;
  const Wishes wishes_;
  std::vector<Stream> streams_;
  std::vector<DataFile> dataFiles_;
  std::vector<std::string> foreign_;  // files of filters whose names begin with the target's
};

void DumpRun::FindStreams() {
  for (const Port &port : target_.filter->ports) {
    if (!IsWanted(port, wishes_.sides)) continue;
    for (size_t group = 0; group < kGroupChannels.size(); ++group) {
      const auto layout = LayoutOf(port, group, wishes_.bits);
      if (!layout) continue;
      if (!port.isInput && layout->bytesPerSample == 3) {
        context_.GetChannel().Warn(fmt::format(
            "{} is left out: a process cannot dump packed 24-bit outputs; dump the input of the next filter",
            PortName(port)));
        continue;
      }
      streams_.push_back({&port, group, {layout->channels, layout->bytesPerSample, wishes_.rate}, {}});
    }
    for (const char *kind : {"meta", "raw"})
      dataFiles_.push_back({&port, kind, {}});
  }
  if (streams_.empty()) {
    throw CtlError(ExitCode::kNotFound, fmt::format("{} has no {}port that can be dumped", FullName(target_),
                                                    wishes_.sides.input && wishes_.sides.output ? ""
                                                    : wishes_.sides.input                       ? "input "
                                                                                                : "output "));
  }
}

uint64_t DumpRun::WantedFrames() const {
  return static_cast<uint64_t>(std::llround(wishes_.seconds * wishes_.rate));
}

void DumpRun::CheckSize() {
  uint64_t all = 0;
  for (const Stream &stream : streams_) {
    const uint64_t bytes = WantedFrames() * stream.layout.FrameBytes();
    if (bytes > kMostWavBytes)
      throw CtlError(ExitCode::kUsage, "a WAV file holds at most 4 GiB", "fewer --seconds");
    all += bytes;
  }
  const int64_t free = context_.GetHost().FreeBytes(context_.GetSettings().directory);
  if (free < 0 || all + kFreeBytesLeft < static_cast<uint64_t>(free)) return;
  throw CtlError(ExitCode::kUnreachable,
                 fmt::format("the dump takes {} MiB, and {} has {} MiB free", all >> 20,
                             context_.GetSettings().directory, free >> 20),
                 "fewer --seconds, or only --in or --out");
}

// True when it was interrupted.
bool DumpRun::Record() {
  const Selection selection =
      SelectionOf(context_.GetListing(), target_, kLongestLine - sizeof("kest_dump_output_filter="), false);
  Channel &channel = context_.GetChannel();
  SwitchedOn on(channel, {fmt::format("kest_dump_{}=off", wishes_.sides.word)});
  bool isInterrupted = false;
  try {
    SwitchOn(selection);
    WaitUntilDumped();
  } catch (const CtlError &error) {
    if (error.Code() != ExitCode::kInterrupted) throw;
    isInterrupted = true;
  }
  on.Off();
  isInterrupted = isInterrupted || IsInterrupted();
  ForgetInterrupt();  // what came is still to be kept
  std::this_thread::sleep_for(kLastCycle);
  return isInterrupted;
}

// Nothing is selected at first, so that the number of the run is known before a file of it is written.
void DumpRun::SwitchOn(const Selection &selection) {
  const std::string side = wishes_.sides.word;
  const std::string select = fmt::format("kest_dump_{}=", side == "io" ? "filter_io" : side + "_filter");
  const Reply reply =
      context_.GetChannel().Send({select + NoSelection().Text(), fmt::format("kest_dump_{}=on", side)});
  NameFiles(ParseDumpRun(reply.lines, true), ParseDumpRun(reply.lines, false));
  context_.GetChannel().Send({select + selection.Text()});
}

void DumpRun::NameFiles(std::optional<unsigned> inputRun, std::optional<unsigned> outputRun) {
  if ((wishes_.sides.input && !inputRun) || (wishes_.sides.output && !outputRun)) {
    throw CtlError(ExitCode::kLost, "the process did not say which files it dumps to");
  }
  const std::string &directory = context_.GetSettings().directory;
  const auto pathOf = [&](const Target &target, const Port &port, const std::string &end) {
    const unsigned run = (port.isInput ? inputRun : outputRun).value_or(0);
    std::string path = directory + DumpName(target.pipeline->name, target.filter->name, port, run) + end;
    if (path.size() < kLongestPath) return path;
    throw CtlError(ExitCode::kNotFound, "the names are too long: the process would cut those of the files");
  };
  const auto pcmEnd = [](size_t group) { return fmt::format("_{}.pcm", kGroupNames[group]); };
  for (Stream &stream : streams_) {
    const std::string path = pathOf(target_, *stream.port, pcmEnd(stream.group));
    stream.before = SizeOf(path);
    stream.path = path;
  }
  for (DataFile &file : dataFiles_) {
    const std::string path = pathOf(target_, *file.port, fmt::format(".{}", file.kind));
    file.before = SizeOf(path);
    file.path = path;
  }
  for (const Target &other :
       SelectedBy(context_.GetListing(), target_.pipeline->name, target_.filter->name)) {
    if (other.filter == target_.filter) continue;
    for (const Port &port : other.filter->ports) {
      if (!IsWanted(port, wishes_.sides)) continue;
      for (const std::string end : {"_dmx.pcm", "_mc.pcm", "_rawmc.pcm", ".meta", ".raw"}) {
        const std::string path = pathOf(other, port, end);
        if (SizeOf(path) == 0) foreign_.push_back(path);
      }
    }
  }
}

void DumpRun::WaitUntilDumped() {
  const StatusLine progress(context_.IsSilent());
  const auto deadline =
      Clock::now() + kPatience +
      std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(wishes_.seconds * kSlowness));
  while (Clock::now() < deadline) {
    uint64_t least = std::numeric_limits<uint64_t>::max();
    for (const Stream &stream : streams_) {
      const uint64_t frames = FramesOf(stream);
      if (frames > 0) least = std::min(least, frames);
    }
    const bool isAny = least != std::numeric_limits<uint64_t>::max();
    if (isAny && least >= WantedFrames()) return;
    if (context_.GetChannel().IsDeserted()) {
      context_.GetChannel().Warn("ended early: the process has ended");
      return;
    }
    const int64_t free = context_.GetHost().FreeBytes(context_.GetSettings().directory);
    if (free >= 0 && free < kFreeBytesLeft) {
      context_.GetChannel().Warn("ended early: the disk is nearly full");
      return;
    }
    progress.Show(fmt::format("dumping {}: {:.1f} of {} s", FullName(target_),
                              isAny ? static_cast<double>(least) / wishes_.rate : 0.0, wishes_.seconds));
    Pause(kPoll);
  }
}

std::string DumpRun::PathFor(const Port &port, const std::string &end) const {
  const std::string name = fmt::format("{}_{}_{}{}", FileWord(target_.pipeline->name),
                                       FileWord(target_.filter->name), PortName(port), end);
  return (std::filesystem::path(wishes_.directory) / name).string();
}

void DumpRun::KeepStream(const Stream &stream, Json &files, Table &table) {
  const uint64_t frames = std::min(FramesOf(stream), WantedFrames());
  if (frames == 0) return;
  const std::string path = PathFor(*stream.port, fmt::format("_{}.wav", kGroupNames[stream.group]));
  const unsigned channels =
      std::min(static_cast<unsigned>(wishes_.channels.value_or(10)), stream.layout.channels);
  const WrittenWav written =
      WriteWav(context_.GetHost(), {stream.path, stream.before, frames * stream.layout.FrameBytes()},
               stream.layout, path, channels);
  const double seconds = static_cast<double>(written.frames) / wishes_.rate;
  if (written.frames < WantedFrames())
    context_.GetChannel().Warn(fmt::format("only {:.3f} s came through {}", seconds, PortName(*stream.port)));
  files.push_back({{"path", ToJson(path)},
                   {"kind", "pcm"},
                   {"channels", channels},
                   {"bits", stream.layout.bytesPerSample * 8},
                   {"rate", wishes_.rate},
                   {"frames", written.frames},
                   {"zero_channels", written.zeroChannels}});
  table.Add({path, fmt::format("{}", channels), fmt::format("{}", stream.layout.bytesPerSample * 8),
             fmt::format("{}", wishes_.rate), fmt::format("{:.3f}", seconds),
             written.zeroChannels.empty()
                 ? ""
                 : fmt::format("all samples 0 in channel {}", fmt::join(written.zeroChannels, ", "))});
}

void DumpRun::KeepData(const DataFile &file, Json &files, Table &table) {
  const uint64_t size = SizeOf(file.path);
  if (size <= file.before) return;
  const std::string path = PathFor(*file.port, fmt::format(".{}", file.kind));
  const uint64_t bytes = size - file.before;
  CopyDump(context_.GetHost(), {file.path, file.before, bytes}, path);
  files.push_back({{"path", ToJson(path)},
                   {"kind", file.kind == std::string_view("meta") ? "metadata" : "raw"},
                   {"bytes", bytes}});
  table.Add({path, "", "", "", "", fmt::format("{} bytes", bytes)});
}

// Whatever ended the dump, which is off by now. Files that were there before are not this command's to
// remove.
void DumpRun::RemoveFiles() noexcept {
  std::vector<std::string> paths = foreign_;
  for (const Stream &stream : streams_) {
    if (stream.before == 0) paths.push_back(stream.path);
  }
  for (const DataFile &file : dataFiles_) {
    if (file.before == 0) paths.push_back(file.path);
  }
  RemoveWrittenFiles(context_.GetChannel(), paths);
}

Result DumpRun::Keep() {
  Result result;
  Json files = Json::array();
  Table table({{"FILE"},
               {"CHANNELS", Table::Align::kRight},
               {"BITS", Table::Align::kRight},
               {"RATE", Table::Align::kRight},
               {"SECONDS", Table::Align::kRight},
               {"NOTE"}});
  for (const Stream &stream : streams_)
    KeepStream(stream, files, table);
  for (const DataFile &file : dataFiles_)
    KeepData(file, files, table);
  result.data = {{"pipeline", ToJson(target_.pipeline->name)},
                 {"filter", ToJson(target_.filter->name)},
                 {"files", files}};
  if (files.empty()) {
    result.exit = ExitCode::kNoAnswer;
    result.message = fmt::format("nothing passed through {}", FullName(target_));
    result.hint = "does it run, and do its ports have data? kestctl ls shows it";
    return result;
  }
  result.text = table.Text();
  return result;
}

}  // namespace

Result RunDump(Context &context, const Arguments &arguments) {
  Wishes wishes = WishesOf(arguments);
  const Target target = FindFilter(context.GetListing(), arguments.words[0]);
  return DumpRun(context, target, std::move(wishes)).Run();
}

}  // namespace kest::ctl
