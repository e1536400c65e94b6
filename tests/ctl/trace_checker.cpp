// SPDX-License-Identifier: Apache-2.0
#include "tests/ctl/trace_checker.h"

#include <map>
#include <vector>

namespace kest::test {
namespace {

using Json = nlohmann::json;

struct Slice {
  uint64_t start;
  uint64_t end;
};

class TraceChecker {
 public:
  std::string Check(const Json &document) {
    if (!document.is_object() || !document["traceEvents"].is_array()) return "no array traceEvents";
    for (const Json &event : document["traceEvents"]) {
      const std::string complaint = Take(event);
      if (!complaint.empty()) return complaint + ": " + event.dump();
    }
    for (const auto &[tid, slices] : slices_) {
      if (tracks_.count(tid) == 0) return "a thread without a name";
    }
    return CheckFlows();
  }

 private:
  std::string Take(const Json &event) {
    const std::string phase = event.value("ph", "");
    if (!event["name"].is_string() || !event["pid"].is_number_integer()) return "no name or process";
    if (phase == "M") return TakeName(event);
    if (!event["ts"].is_number_unsigned()) return "no time";
    const uint64_t time = event["ts"];
    if (time < time_) return "time goes back";
    time_ = time;
    if (phase == "C") return CheckCounter(event);
    if (!event["tid"].is_number_integer()) return "no thread";
    if (phase == "X") return TakeSlice(event);
    if (phase == "s") return flows_.emplace(event["id"].get<int>(), event).second ? "" : "an id twice";
    if (phase == "f") return TakeFlowEnd(event);
    return "an unknown phase";
  }

  std::string TakeName(const Json &event) {
    const std::string name = event["name"];
    if (name == "process_name") return event["args"]["name"].is_string() ? "" : "a nameless process";
    if (name == "thread_sort_index") return event["args"]["sort_index"].is_number() ? "" : "no sort index";
    if (name != "thread_name" || !event["args"]["name"].is_string()) return "unknown metadata";
    tracks_[event["tid"]] = event["args"]["name"];
    return "";
  }

  static std::string CheckCounter(const Json &event) {
    if (!event["args"].is_object() || event["args"].empty()) return "a counter without a value";
    for (const Json &value : event["args"]) {
      if (!value.is_number()) return "a counter whose value is no number";
    }
    return "";
  }

  std::string TakeSlice(const Json &event) {
    if (!event["dur"].is_number_unsigned()) return "a slice without an end";
    const Slice slice = {event["ts"], event["ts"].get<uint64_t>() + event["dur"].get<uint64_t>()};
    std::vector<Slice> &open = open_[event["tid"]];
    while (!open.empty() && open.back().end <= slice.start && open.back().end < slice.end)
      open.pop_back();
    if (!open.empty() && slice.end > open.back().end) return "slices overlap";
    open.push_back(slice);
    slices_[event["tid"]].push_back(slice);
    return "";
  }

  std::string TakeFlowEnd(const Json &event) {
    if (event.value("bp", "") != "e") return "an arrow that ends in the next slice";
    if (flows_.count(event["id"]) == 0) return "an arrow without a beginning";
    ends_.push_back(event);
    return "";
  }

  [[nodiscard]] bool IsInSlice(const Json &event) const {
    const auto slices = slices_.find(event["tid"].get<int>());
    if (slices == slices_.end()) return false;
    const uint64_t time = event["ts"];
    return std::any_of(slices->second.begin(), slices->second.end(),
                       [&](const Slice &slice) { return slice.start <= time && time < slice.end; });
  }

  [[nodiscard]] std::string CheckFlows() const {
    if (flows_.size() != ends_.size()) return "an arrow without an end";
    for (const auto &[id, begin] : flows_) {
      if (!IsInSlice(begin)) return "an arrow from nowhere: " + begin.dump();
    }
    for (const Json &end : ends_) {
      if (!IsInSlice(end)) return "an arrow to nowhere: " + end.dump();
    }
    return "";
  }

  uint64_t time_ = 0;
  std::map<int, std::string> tracks_;
  std::map<int, std::vector<Slice>> open_;
  std::map<int, std::vector<Slice>> slices_;
  std::map<int, Json> flows_;
  std::vector<Json> ends_;
};

}  // namespace

std::string TraceComplaint(const Json &document) {
  return TraceChecker().Check(document);
}

}  // namespace kest::test
