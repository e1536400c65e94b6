// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/live_text.h"

#include <algorithm>

#include <fmt/format.h>

#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

constexpr size_t kMarkWidth = 14;
constexpr size_t kPortWidth = 15;
constexpr size_t kXrunWidth = 9;
constexpr size_t kFixedWidth = 1 + kMarkWidth + 1 + 5 + 2 + kPortWidth + 1 + kPortWidth + 1 + kXrunWidth;
constexpr size_t kLeastName = 8;
constexpr size_t kMostName = 40;
constexpr unsigned kBarWidth = 8;

struct MarkInfo {
  const char *text;
  const char *json;
  Tone tone;
};

// In the order of Mark.
constexpr MarkInfo kMarks[] = {{"runs", "ran", Tone::kGood},
                               {"not run", "not_run", Tone::kDoubtful},
                               {"did not finish", "did_not_finish", Tone::kBad},
                               {"?", "unknown", Tone::kPlain}};

const MarkInfo &InfoOf(Mark mark) {
  return kMarks[static_cast<size_t>(mark)];
}

std::string Fit(const std::string &text, size_t width) {
  std::string shown = Escape(text);
  while (WidthOf(shown) > width)
    shown.pop_back();
  shown = ToUtf8(shown).size() == shown.size() ? shown : std::string(width, '?');
  return shown + std::string(width - std::min(width, WidthOf(shown)), ' ');
}

std::string ShowCpu(const std::optional<double> &percent) {
  return percent ? fmt::format("{:5.1f}", *percent) : "    -";
}

// "0  75% ######--"
std::string ShowPort(const LivePort *port) {
  if (port == nullptr) return std::string(kPortWidth, ' ');
  const unsigned filled = std::min((port->Percent() * kBarWidth + 99) / 100, kBarWidth);
  return fmt::format("{:<2}{:>3}% {}{}", port->number, std::min(port->Percent(), 999u),
                     std::string(filled, '#'), std::string(kBarWidth - filled, '-'));
}

std::string ShowXruns(uint64_t count, uint64_t added) {
  return added == 0 ? std::to_string(count) : fmt::format("{} +{}", count, added);
}

// Of the ports of a row.
ToneText XrunsOf(const LivePort *in, const LivePort *out) {
  uint64_t count = 0;
  uint64_t added = 0;
  bool isKnown = false;
  for (const LivePort *port : {in, out}) {
    if (port == nullptr) continue;
    isKnown = isKnown || port->xruns.has_value();
    count += port->xruns.value_or(0);
    added += port->newXruns;
  }
  const Tone tone = added > 0 ? Tone::kBad : count > 0 ? Tone::kDoubtful : Tone::kPlain;
  return {tone, fmt::format("{:>{}}", isKnown ? ShowXruns(count, added) : "-", kXrunWidth)};
}

std::vector<const LivePort *> PortsOf(const LiveFilter &filter, bool isInput) {
  std::vector<const LivePort *> ports;
  for (const LivePort &port : filter.ports) {
    if (port.isInput == isInput) ports.push_back(&port);
  }
  return ports;
}

// An output and the input behind it may be one and the same ring with one counter.
bool IsSameRing(const LivePort &output, const LiveFilter &next) {
  return std::any_of(next.ports.begin(), next.ports.end(), [&](const LivePort &port) {
    return port.isInput && !output.isInput && port.size == output.size && port.xruns == output.xruns;
  });
}

struct XrunCount {
  uint64_t all = 0;
  uint64_t added = 0;
};

XrunCount CountXruns(const LiveSample &sample) {
  XrunCount count;
  for (const LivePipeline &pipeline : sample.pipelines) {
    for (size_t i = 0; i < pipeline.filters.size(); ++i) {
      for (const LivePort &port : pipeline.filters[i].ports) {
        if (i + 1 < pipeline.filters.size() && IsSameRing(port, pipeline.filters[i + 1])) continue;
        count.all += port.xruns.value_or(0);
        count.added += port.newXruns;
      }
    }
  }
  return count;
}

class LiveRows {
 public:
  explicit LiveRows(size_t columns)
      : nameWidth_(std::clamp(columns - std::min(columns, kFixedWidth), kLeastName, kMostName)) {}

  std::vector<ToneLine> Take(const LiveSample &sample) {
    lines_.push_back(Header(sample));
    if (!sample.problem.empty()) lines_.push_back({{Tone::kBad, Escape(sample.problem)}});
    lines_.push_back({{Tone::kTitle, fmt::format("{} {:<{}} {:>5}  {:<{}} {:<{}} {:>{}}",
                                                 Fit("NAME", nameWidth_), "STATE", kMarkWidth, "CPU %", "IN",
                                                 kPortWidth, "OUT", kPortWidth, "XRUNS", kXrunWidth)}});
    for (const LivePipeline &pipeline : sample.pipelines)
      Add(pipeline);
    return std::move(lines_);
  }

 private:
  static ToneLine Header(const LiveSample &sample) {
    const XrunCount count = CountXruns(sample);
    const std::string cpu = sample.cpuPercent ? fmt::format("{:.1f} %", *sample.cpuPercent) : "-";
    return {{Tone::kTitle, fmt::format("{} ({})", Escape(sample.process.name), sample.process.pid)},
            {Tone::kPlain, fmt::format("  CPU {}  under- and overruns ", cpu)},
            {count.added > 0 ? Tone::kBad : Tone::kPlain, ShowXruns(count.all, count.added)}};
  }

  void Add(const LivePipeline &pipeline) {
    lines_.push_back({{Tone::kTitle, Fit(pipeline.name, nameWidth_)},
                      {Tone::kPlain, fmt::format(" {} {}", Fit(pipeline.state, kMarkWidth),
                                                 ShowCpu(pipeline.cpuPercent))}});
    for (const LiveFilter &filter : pipeline.filters)
      Add(filter);
  }

  // Further ports have rows of their own.
  void Add(const LiveFilter &filter) {
    const auto ins = PortsOf(filter, true);
    const auto outs = PortsOf(filter, false);
    const size_t rows = std::max({ins.size(), outs.size(), size_t{1}});
    for (size_t row = 0; row < rows; ++row) {
      const LivePort *in = row < ins.size() ? ins[row] : nullptr;
      const LivePort *out = row < outs.size() ? outs[row] : nullptr;
      const MarkInfo &mark = InfoOf(filter.mark);
      lines_.push_back({{Tone::kPlain, Fit(row == 0 ? "  " + filter.name : "", nameWidth_) + " "},
                        {mark.tone, Fit(row == 0 ? mark.text : "", kMarkWidth)},
                        {Tone::kPlain, fmt::format("{:8}{} {} ", "", ShowPort(in), ShowPort(out))},
                        XrunsOf(in, out)});
    }
  }

  size_t nameWidth_;
  std::vector<ToneLine> lines_;
};

constexpr const char *kColours[] = {"", "\033[1m", "\033[32m", "\033[33m", "\033[1;31m"};  // by Tone

Json PortJson(const LivePort &port) {
  return {{"side", port.isInput ? "in" : "out"},
          {"number", port.number},
          {"level", port.level},
          {"size", port.size},
          {"percent", port.Percent()},
          {"xruns", port.xruns ? Json(*port.xruns) : Json()},
          {"new_xruns", port.newXruns}};
}

Json FilterJson(const LiveFilter &filter) {
  Json json = {{"name", ToJson(filter.name)}, {"mark", InfoOf(filter.mark).json}, {"ports", Json::array()}};
  for (const LivePort &port : filter.ports)
    json["ports"].push_back(PortJson(port));
  return json;
}

Json PipelineJson(const LivePipeline &pipeline) {
  Json json = {{"name", ToJson(pipeline.name)},
               {"tid", pipeline.tid},
               {"state", ToJson(pipeline.state)},
               {"cpu_percent", pipeline.cpuPercent ? Json(*pipeline.cpuPercent) : Json()},
               {"filters", Json::array()}};
  for (const LiveFilter &filter : pipeline.filters)
    json["filters"].push_back(FilterJson(filter));
  return json;
}

}  // namespace

std::vector<ToneLine> ShowLive(const LiveSample &sample, size_t columns) {
  return LiveRows(columns).Take(sample);
}

std::string Join(const ToneLine &line, bool colour) {
  std::string text;
  for (const ToneText &part : line) {
    const std::string start = colour ? kColours[static_cast<size_t>(part.tone)] : "";
    text += start.empty() ? part.text : start + part.text + "\033[0m";
  }
  if (!colour) text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

Json ToJson(const LiveSample &sample) {
  Json json = {{"pid", sample.process.pid},
               {"name", ToJson(sample.process.name)},
               {"cpu_percent", sample.cpuPercent ? Json(*sample.cpuPercent) : Json()},
               {"problem", sample.problem.empty() ? Json() : ToJson(sample.problem)},
               {"pipelines", Json::array()}};
  for (const LivePipeline &pipeline : sample.pipelines)
    json["pipelines"].push_back(PipelineJson(pipeline));
  return json;
}

}  // namespace kest::ctl
