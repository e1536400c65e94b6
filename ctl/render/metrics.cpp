// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/metrics.h"

#include <algorithm>
#include <string_view>

#include "ctl/model/port_name.h"

namespace kest::ctl {
namespace {

constexpr auto kGauge = MetricKind::Type::kGauge;
constexpr auto kCounter = MetricKind::Type::kCounter;

constexpr MetricKind kUp = {"kest_up", kGauge, "Whether a process answers at the command pipe."};
constexpr MetricKind kProcesses = {"kest_processes", kGauge, "Processes that read the command pipe."};
constexpr MetricKind kLogBytes = {"kest_log_bytes", kGauge, "Size of the log."};
constexpr MetricKind kLogLevel = {"kest_log_level", kGauge,
                                  "Number of the log level; 1 logs least, 240 all."};
constexpr MetricKind kAnswer = {"kest_answer_seconds", kGauge,
                                "Time from a question in the pipe to the end of its answer."};
constexpr MetricKind kRunning = {"kest_filter_running", kGauge, "Whether the filter is in the state RUN."};

// Figures of a port as the list gives them.
struct PortFigure {
  MetricKind kind;
  double (*of)(const Port &port);
};

constexpr PortFigure kPortFigures[] = {
    {{"kest_port_connected", kGauge, "Whether the port is connected."},
     [](const Port &port) { return port.connected ? 1.0 : 0.0; }},
    {{"kest_port_level_samples", kGauge, "Samples of each channel in the port's ring."},
     [](const Port &port) { return static_cast<double>(port.pcm.level); }},
    {{"kest_port_ring_samples", kGauge, "Samples of each channel that the port's ring has room for."},
     [](const Port &port) { return static_cast<double>(port.pcm.size); }},
    {{"kest_port_metadata_level_bytes", kGauge, "Metadata in the port."},
     [](const Port &port) { return static_cast<double>(port.metadata.level); }},
    {{"kest_port_metadata_size_bytes", kGauge, "Metadata that the port has room for."},
     [](const Port &port) { return static_cast<double>(port.metadata.size); }},
    {{"kest_port_raw_level_bytes", kGauge, "Raw data in the port."},
     [](const Port &port) { return static_cast<double>(port.raw.level); }},
    {{"kest_port_raw_size_bytes", kGauge, "Raw data that the port has room for."},
     [](const Port &port) { return static_cast<double>(port.raw.size); }},
};

// Figures that a filter reports of itself, or of one of its ports: then the port's name and a dot precede.
struct Report {
  std::string_view value;
  MetricKind kind;
  double factor = 1.0;
};

constexpr Report kFilterReports[] = {
    {"OkFrmCnt", {"kest_filter_frames_decoded_total", kCounter, "Frames that the decoder decoded."}},
    {"ErrFrmCnt",
     {"kest_filter_frames_damaged_total", kCounter, "Frames that the decoder could not decode."}},
    {"FramesPassed",
     {"kest_filter_frames_passed_total", kCounter, "Frames that the synchronisation passed on."}},
    {"FramesSkipped",
     {"kest_filter_frames_skipped_total", kCounter, "Frames that the synchronisation dropped."}},
    {"DataEmpty",
     {"kest_filter_data_empty_total", kCounter, "Times that the synchronisation found no data."}},
    {"Gain", {"kest_filter_gain_decibels", kGauge, "Gain that the filter is set to."}},
    {"Mute", {"kest_filter_muted", kGauge, "Whether the filter is muted."}},
    {"DelayTime", {"kest_filter_delay_seconds", kGauge, "Delay that the filter is set to."}, 0.001},
};

constexpr Report kPortReports[] = {
    {"underruns", {"kest_port_underruns_total", kCounter, "Cycles in which the port held too little."}},
    {"underruns_raw",
     {"kest_port_raw_underruns_total", kCounter, "Cycles in which the port held too little raw data."}},
    {"overruns", {"kest_port_overruns_total", kCounter, "Cycles in which the port had too little room."}},
};

class Collector {
 public:
  explicit Collector(const std::string &device) {
    if (!device.empty()) common_.emplace_back("device", device);
  }

  // Names can occur twice, but no monitoring system takes two figures of the same name: the first counts.
  void Add(const MetricKind &kind, double value, const std::vector<std::string> &names = {}) {
    constexpr const char *kLabels[] = {"pipeline", "filter", "port"};
    MetricSample sample = {common_, value};
    for (size_t i = 0; i < names.size() && i < std::size(kLabels); ++i)
      sample.labels.emplace_back(kLabels[i], names[i]);
    std::vector<MetricSample> &samples = SamplesOf(kind);
    const bool isKnown = std::any_of(samples.begin(), samples.end(), [&](const MetricSample &other) {
      return other.labels == sample.labels;
    });
    if (!isKnown) samples.push_back(std::move(sample));
  }

  std::vector<MetricFamily> Take() { return std::move(families_); }

 private:
  std::vector<MetricSample> &SamplesOf(const MetricKind &kind) {
    const auto found = std::find_if(families_.begin(), families_.end(), [&](const MetricFamily &family) {
      return std::string_view(family.kind.name) == kind.name;
    });
    if (found != families_.end()) return found->samples;
    families_.push_back({kind, {}});
    return families_.back().samples;
  }

  std::vector<std::pair<std::string, std::string>> common_;
  std::vector<MetricFamily> families_;
};

void AddListing(const Listing &listing, Collector &collector) {
  for (const Pipeline &pipeline : listing.pipelines) {
    for (const Filter &filter : pipeline.filters) {
      collector.Add(kRunning, filter.state == "RUN" ? 1.0 : 0.0, {pipeline.name, filter.name});
      for (const Port &port : filter.ports) {
        for (const PortFigure &figure : kPortFigures)
          collector.Add(figure.kind, figure.of(port), {pipeline.name, filter.name, PortName(port)});
      }
    }
  }
}

void AddReported(const FilterStatus &filter, const std::string &name, int64_t number, Collector &collector) {
  const size_t dot = name.find('.');
  const bool isOfPort = dot != std::string::npos;
  const Report *begin = isOfPort ? std::begin(kPortReports) : std::begin(kFilterReports);
  const Report *end = isOfPort ? std::end(kPortReports) : std::end(kFilterReports);
  const std::string value = isOfPort ? name.substr(dot + 1) : name;
  const Report *report = std::find_if(begin, end, [&](const Report &known) { return known.value == value; });
  if (report == end) return;
  std::vector<std::string> names = {filter.pipeline, filter.name};
  if (isOfPort) names.push_back(name.substr(0, dot));
  collector.Add(report->kind, static_cast<double>(number) * report->factor, names);
}

}  // namespace

std::vector<MetricFamily> MetricsOf(const Figures &figures, const std::string &device) {
  Collector collector(device);
  collector.Add(kUp, figures.inside ? 1.0 : 0.0);
  collector.Add(kProcesses, static_cast<double>(figures.processes));
  if (figures.logBytes) collector.Add(kLogBytes, static_cast<double>(*figures.logBytes));
  if (!figures.inside) return collector.Take();
  collector.Add(kLogLevel, figures.inside->logLevel);
  collector.Add(kAnswer, figures.inside->answerSeconds);
  AddListing(figures.inside->listing, collector);
  for (const FilterStatus &filter : figures.inside->status.filters) {
    for (const auto &[name, number] : filter.values)
      AddReported(filter, name, number, collector);
  }
  return collector.Take();
}

}  // namespace kest::ctl
