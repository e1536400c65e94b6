// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "ctl/audio/checks.h"
#include "ctl/audio/reference.h"
#include "ctl/channel/interrupt.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/option_values.h"
#include "ctl/render/status_line.h"
#include "ctl/render/table.h"

namespace kest::ctl {
namespace {

constexpr auto kRight = Table::Align::kRight;
constexpr size_t kShownFlaws = 40;

// What is found of all channels.
class Findings {
 public:
  void Add(const Signal &signal, size_t channel, const Flaw &flaw) {
    const double seconds = signal.Seconds(flaw.begin);
    json_.push_back({{"time", seconds},
                     {"seconds", signal.Seconds(flaw.end - flaw.begin)},
                     {"channel", channel},
                     {"kind", flaw.kind},
                     {"value", flaw.value},
                     {"unit", flaw.unit}});
    if (json_.size() > kShownFlaws) return;
    table_.Add({fmt::format("{:.4f}", seconds), fmt::format("{}", channel), flaw.kind,
                fmt::format("{:.5g} {}", flaw.value, flaw.unit)});
  }

  [[nodiscard]] size_t Count() const { return json_.size(); }
  [[nodiscard]] const Json &All() const { return json_; }
  [[nodiscard]] std::string Text() const {
    if (table_.IsEmpty()) return "nothing is wrong\n";
    const size_t more = json_.size() - std::min(json_.size(), kShownFlaws);
    return table_.Text() + (more == 0 ? "" : fmt::format("... and {} more\n", more));
  }

 private:
  Json json_ = Json::array();
  Table table_{{{"SECONDS", kRight}, {"CHANNEL", kRight}, {"FOUND"}, {"VALUE"}}};
};

Json ReportJson(const ChannelReport &report, size_t channel) {
  Json sine = nullptr;
  if (report.sine) {
    sine = {{"hz", report.sine->hz}, {"dbfs", ToDb(report.sine->amplitude)}, {"snr_db", report.sine->snrDb}};
  }
  return {{"channel", channel},
          {"peak_dbfs", ToDb(report.peak)},
          {"rms_dbfs", ToDb(report.rms)},
          {"offset", report.offset},
          {"sine", sine}};
}

void AddRow(Table &table, const ChannelReport &report, size_t channel) {
  table.Add({fmt::format("{}", channel), fmt::format("{:.2f}", ToDb(report.peak)),
             fmt::format("{:.2f}", ToDb(report.rms)), fmt::format("{:+.6f}", report.offset),
             report.sine ? fmt::format("{:.3f} Hz, {:.2f} dBFS, SNR {:.1f} dB", report.sine->hz,
                                       ToDb(report.sine->amplitude), report.sine->snrDb)
                         : ""});
}

std::vector<Signal> SignalsOf(AudioFile &file) {
  std::vector<Signal> signals;
  signals.reserve(file.Channels());
  for (unsigned channel = 0; channel < file.Channels(); ++channel)
    signals.push_back(SignalOf(file.Read(channel), file.Rate()));
  return signals;
}

void CompareWith(const std::string &path, const std::vector<Signal> &recording, Findings &findings) {
  AudioFile file(path);
  if (file.Rate() != recording[0].rate) {
    throw CtlError(ExitCode::kUsage, fmt::format("{} has another sample rate, {} Hz", path, file.Rate()));
  }
  const std::vector<ChannelVerdict> verdicts = CompareChannels(recording, SignalsOf(file));
  for (size_t channel = 0; channel < verdicts.size(); ++channel) {
    const ChannelVerdict &verdict = verdicts[channel];
    if (*verdict.kind == '\0') continue;
    findings.Add(recording[0], channel + 1,
                 {0, recording[0].samples.size(), verdict.kind, verdict.value, verdict.unit});
  }
}

}  // namespace

Result RunCheck(Context &context, const Arguments &arguments) {
  const std::string &path = arguments.words[0];
  const auto leastSnrDb = RealOption(arguments, "min-snr", {-200, 200});
  AudioFile file(path);
  if (file.Frames() == 0) throw CtlError(ExitCode::kUsage, fmt::format("{} holds no sound", path));
  const StatusLine progress(context.IsSilent());
  Findings findings;
  Json channels = Json::array();
  Table levels(
      {{"CHANNEL", kRight}, {"PEAK DBFS", kRight}, {"RMS DBFS", kRight}, {"OFFSET", kRight}, {"TONE"}});
  progress.Show("reading");
  const std::vector<Signal> recording = SignalsOf(file);
  for (size_t channel = 1; channel <= recording.size(); ++channel) {
    ThrowIfInterrupted();
    progress.Show(fmt::format("checking channel {} of {}", channel, recording.size()));
    const ChannelReport report = CheckChannel(recording[channel - 1], leastSnrDb);
    for (const Flaw &flaw : report.flaws)
      findings.Add(recording[channel - 1], channel, flaw);
    channels.push_back(ReportJson(report, channel));
    AddRow(levels, report, channel);
  }
  if (const auto reference = arguments.Option("reference")) CompareWith(*reference, recording, findings);
  Result result;
  result.data = {{"path", ToJson(path)},    {"rate", file.Rate()},  {"bits", file.Bits()},
                 {"frames", file.Frames()}, {"channels", channels}, {"findings", findings.All()}};
  result.text = levels.Text() + "\n" + findings.Text();
  if (findings.Count() > 0) {
    result.exit = ExitCode::kRefused;
    result.message =
        fmt::format("{} finding{} in {}", findings.Count(), findings.Count() == 1 ? "" : "s", path);
  }
  return result;
}

}  // namespace kest::ctl
