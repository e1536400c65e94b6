// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"
#include "ctl/commands/option_values.h"
#include "ctl/parse/trace.h"
#include "ctl/render/gnuplot.h"
#include "ctl/render/output_file.h"
#include "ctl/render/plots.h"
#include "ctl/render/status_line.h"

namespace kest::ctl {
namespace {

constexpr double kLongest = 86400.0;  // seconds

// The part of a recording that is wanted.
struct Part {
  std::vector<Signal> channels;
  std::vector<unsigned> numbers;  // of the channels, from 1
  double from = 0.0;
};

Part ReadPart(const std::string &path, const Arguments &arguments) {
  AudioFile file(path);
  Part part;
  part.from = RealOption(arguments, "from", {0, kLongest}).value_or(0.0);
  const double seconds = RealOption(arguments, "seconds", {0.00001, kLongest}).value_or(kLongest);
  const auto only = WholeOption(arguments, "channel", {1, static_cast<double>(file.Channels())});
  const auto begin = std::min(file.Frames(), static_cast<uint64_t>(part.from * file.Rate()));
  const auto count = std::min(file.Frames() - begin, static_cast<uint64_t>(seconds * file.Rate()));
  if (count == 0) throw CtlError(ExitCode::kUsage, fmt::format("{} holds no sound there", path));
  for (unsigned channel = 0; channel < file.Channels(); ++channel) {
    if (only && channel + 1 != static_cast<unsigned>(*only)) continue;
    const Samples all = file.Read(channel);
    const auto first = all.begin() + static_cast<ptrdiff_t>(begin);
    part.channels.push_back(SignalOf(Samples(first, first + static_cast<ptrdiff_t>(count)), file.Rate()));
    part.numbers.push_back(channel + 1);
  }
  return part;
}

std::string ReadText(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file || std::filesystem::is_directory(path))
    throw CtlError(ExitCode::kUsage, fmt::format("{} cannot be read", path));
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string BaseName(const std::string &path) {
  return std::filesystem::path(path).filename().string();
}

Picture PictureOf(const std::string &path, const char *what, const Part &part) {
  std::string title = fmt::format("{} of {}", what, BaseName(path));
  if (part.channels.size() == 1) title += fmt::format(", channel {}", part.numbers[0]);
  return {fmt::format("{}, {} Hz", title, part.channels[0].rate), part.from, part.numbers[0]};
}

std::string Waveform(const std::string &path, const Arguments &arguments) {
  const Part part = ReadPart(path, arguments);
  return PlotWaveform(PictureOf(path, "Waveform", part), part.channels);
}

// Of one channel, the first unless another is named.
std::string Spectrogram(const std::string &path, const Arguments &arguments) {
  Arguments one = arguments;
  one.options.emplace("channel", "1");
  const Part part = ReadPart(path, one);
  return PlotSpectrogram(PictureOf(path, "Spectrogram", part), part.channels[0]);
}

std::string Levels(const std::string &path, const Arguments &arguments) {
  const Part part = ReadPart(path, arguments);
  return PlotLevels(PictureOf(path, "Levels", part), part.channels);
}

std::string Cycles(const std::string &path, const Arguments & /*arguments*/) {
  const ParsedTrace parsed = ParseTrace(ReadText(path));
  if (parsed.trace.cycles.empty()) {
    throw CtlError(ExitCode::kUsage, fmt::format("{} holds no cycles", path),
                   "kestctl trace PIPELINE leaves such a file, PIPELINE.txt, in the debug directory");
  }
  const std::string pipelines = fmt::format("{}", fmt::join(parsed.pipelines, ", "));
  return PlotCycles({fmt::format("Cycles of {} in {}", pipelines, BaseName(path))}, parsed.trace.cycles);
}

std::string Latency(const std::string &path, const Arguments & /*arguments*/) {
  const Json document = Json::parse(ReadText(path), nullptr, false);
  std::vector<double> delays;
  const Json runs = document.is_object() ? document.value("/data/runs"_json_pointer, Json::array()) : Json();
  for (const Json &run : runs) {
    if (run.is_object() && run.contains("ms") && run["ms"].is_number()) delays.push_back(run["ms"]);
  }
  if (delays.empty()) {
    throw CtlError(ExitCode::kUsage, fmt::format("{} holds no measured delays", path),
                   "kestctl --json latency FROM TO --repeat N >FILE makes such a file");
  }
  const auto name = [&](const char *key) {
    const Json &value = document["data"][key];
    return value.is_string() ? value.get<std::string>() : std::string("?");
  };
  return PlotLatency({fmt::format("Delay from {} to {}", name("from"), name("to"))}, delays);
}

struct Kind {
  const char *name;
  std::string (*script)(const std::string &path, const Arguments &arguments);
};

constexpr Kind kKinds[] = {{"waveform", Waveform},
                           {"spectrogram", Spectrogram},
                           {"levels", Levels},
                           {"cycles", Cycles},
                           {"latency", Latency}};

const Kind &KindNamed(const std::string &name) {
  std::vector<std::string> names;
  for (const Kind &kind : kKinds) {
    if (kind.name == name) return kind;
    names.emplace_back(kind.name);
  }
  const std::string nearest = Nearest(names, name);
  throw CtlError(ExitCode::kUsage, fmt::format("there is no picture \"{}\"", name),
                 nearest.empty() ? fmt::format("there are {}", fmt::join(names, ", "))
                                 : fmt::format("did you mean {}?", nearest));
}

}  // namespace

Result RunPlot(Context &context, const Arguments &arguments) {
  const Kind &kind = KindNamed(arguments.words[0]);
  const auto output = arguments.Option("output");
  if (!output) throw CtlError(ExitCode::kUsage, "where should the picture go?", "say it with -o FILE.png");
  OutputFile file(*output);
  const StatusLine progress(context.IsSilent());
  progress.Show("drawing");
  const std::string picture = Draw(kind.script(arguments.words[1], arguments));
  file.Write(picture);
  Result result;
  result.data = {{"path", ToJson(*output)}, {"kind", kind.name}, {"bytes", picture.size()}};
  return result;
}

}  // namespace kest::ctl
