// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/trace_json.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>

#include "ctl/model/port_name.h"
#include "ctl/render/json.h"

namespace kest::ctl {
namespace {

struct Event {
  uint64_t timeUs;
  std::string text;
};

std::string Quoted(const std::string &text) {
  return Dump(ToJson(text));
}

class TraceWriter {
 public:
  explicit TraceWriter(const TraceDocument &document) : document_(document) {}

  std::string Text() {
    AddNames();
    for (const TraceTrack &track : document_.tracks)
      AddSlices(track);
    AddFlows();
    AddCounters();
    std::stable_sort(events_.begin(), events_.end(),
                     [](const Event &one, const Event &other) { return one.timeUs < other.timeUs; });
    std::string text = "{\"displayTimeUnit\":\"ms\",\"traceEvents\":[\n";
    for (size_t i = 0; i < events_.size(); ++i)
      text += events_[i].text + (i + 1 < events_.size() ? ",\n" : "\n");
    return text + "]}\n";
  }

 private:
  void Add(uint64_t timeUs, std::string text) { events_.push_back({timeUs, std::move(text)}); }

  void AddNames() {
    Add(0, fmt::format(R"({{"name":"process_name","ph":"M","pid":{},"args":{{"name":{}}}}})", document_.pid,
                       Quoted(document_.process)));
    int index = 0;
    for (const TraceTrack &track : document_.tracks) {
      Add(0, fmt::format(R"({{"name":"thread_name","ph":"M","pid":{},"tid":{},"args":{{"name":{}}}}})",
                         document_.pid, track.tid, Quoted(track.trace.pipeline)));
      Add(0, fmt::format(
                 R"({{"name":"thread_sort_index","ph":"M","pid":{},"tid":{},"args":{{"sort_index":{}}}}})",
                 document_.pid, track.tid, index++));
    }
  }

  void AddSlice(const TraceTrack &track, const char *category, const std::string &quotedName,
                uint64_t startUs, uint64_t endUs, const std::string &args) {
    Add(startUs,
        fmt::format(R"({{"name":{},"cat":"{}","ph":"X","ts":{},"dur":{},"pid":{},"tid":{},"args":{{{}}}}})",
                    quotedName, category, startUs, endUs - startUs, document_.pid, track.tid, args));
  }

  void AddSlices(const TraceTrack &track) {
    std::map<std::string, std::string> names;
    for (size_t i = 0; i < track.trace.cycles.size(); ++i) {
      const Cycle &cycle = track.trace.cycles[i];
      AddSlice(track, "cycle", Quoted(track.trace.pipeline), cycle.startUs, cycle.endUs,
               fmt::format(R"("cycle":{}{})", i, cycle.hasPrinted ? R"(,"printed":1)" : ""));
      for (const FilterTurn &turn : cycle.turns) {
        std::string &name = names[turn.filter];
        if (name.empty()) name = Quoted(turn.filter);
        AddSlice(track, "filter", name, turn.startUs, turn.endUs, turn.isRepaired ? R"("repaired":1)" : "");
      }
    }
  }

  // From each cycle to the first one of a fed pipeline that begins after it.
  void AddFlows() {
    for (const TraceTrack &from : document_.tracks) {
      for (const TraceTrack &to : document_.tracks) {
        if (std::find(from.feeds.begin(), from.feeds.end(), to.trace.pipeline) != from.feeds.end())
          AddFlows(from, to);
      }
    }
  }

  // An arrow begins inside a slice, so not at its end.
  void AddFlows(const TraceTrack &from, const TraceTrack &to) {
    const auto &cycles = from.trace.cycles;
    size_t next = 0;
    for (const Cycle &taking : to.trace.cycles) {
      const size_t first = next;
      while (next < cycles.size() && cycles[next].endUs <= taking.startUs)
        ++next;
      if (next == first || cycles[next - 1].endUs == cycles[next - 1].startUs) continue;
      AddFlow('s', from, cycles[next - 1].endUs - 1, "");
      AddFlow('f', to, taking.startUs, R"(,"bp":"e")");
      ++flows_;
    }
  }

  void AddFlow(char phase, const TraceTrack &track, uint64_t timeUs, const char *more) {
    Add(timeUs,
        fmt::format(R"({{"name":"feeds","cat":"feeds","ph":"{}","id":{},"ts":{},"pid":{},"tid":{}{}}})",
                    phase, flows_ + 1, timeUs, document_.pid, track.tid, more));
  }

  void AddCounters() {
    for (const PortLine &line : document_.portLines) {
      for (const PortState &port : line.ports) {
        const std::string name = fmt::format("{}/{} {}", line.pipeline, line.filter, PortName(port));
        AddCounter(line.timeUs, name + " level", "samples", port.level + (port.isInput ? 0 : port.moved));
        if (port.xruns > 0) AddCounter(line.timeUs, name + " xruns", "count", port.xruns);
      }
    }
  }

  void AddCounter(uint64_t timeUs, const std::string &name, const char *unit, uint64_t value) {
    Add(timeUs, fmt::format(R"({{"name":{},"cat":"level","ph":"C","ts":{},"pid":{},"args":{{"{}":{}}}}})",
                            Quoted(name), timeUs, document_.pid, unit, value));
  }

  const TraceDocument &document_;
  std::vector<Event> events_;
  uint64_t flows_ = 0;
};

}  // namespace

std::string TraceJson(const TraceDocument &document) {
  return TraceWriter(document).Text();
}

}  // namespace kest::ctl
