// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/json.h"

#include "ctl/parse/lines.h"
#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

template <typename Item>
Json ArrayOf(const std::vector<Item> &items) {
  Json array = Json::array();
  for (const Item &item : items)
    array.push_back(ToJson(item));
  return array;
}

Json ToJson(const Fill &fill) {
  return {{"level", fill.level}, {"size", fill.size}};
}

Json ValuesOf(const std::vector<std::pair<std::string, int64_t>> &values) {
  Json object = Json::object();
  for (const auto &[name, value] : values)
    object[name] = value;
  return object;
}

const char *NameOf(Finding::Status status) {
  switch (status) {
    case Finding::Status::kGood:
      return "good";
    case Finding::Status::kNote:
      return "note";
    case Finding::Status::kBad:
      return "bad";
    default:
      return "unknown";
  }
}

}  // namespace

Json ToJson(const std::string &text) {
  return ToUtf8(text);
}

Json ToJson(const std::vector<std::string> &texts) {
  Json array = Json::array();
  for (const std::string &text : texts)
    array.push_back(ToUtf8(text));
  return array;
}

Json ToJson(const Port &port) {
  return {{"side", port.isInput ? "in" : "out"},
          {"number", port.number},
          {"connected", port.connected},
          {"pcm", {{"level", port.pcm.level}, {"ring", port.pcm.size}, {"group_bytes", port.groupBytes}}},
          {"metadata", ToJson(port.metadata)},
          {"raw", ToJson(port.raw)}};
}

Json ToJson(const Filter &filter) {
  return {{"index", filter.index},
          {"state", ToJson(filter.state)},
          {"name", ToJson(filter.name)},
          {"tid", filter.tid},
          {"thread", ToJson(filter.thread)},
          {"ds", filter.ds},
          {"tgt", filter.tgt},
          {"auto_consume", filter.autoConsume},
          {"takes_commands", filter.takesCommands},
          {"ports", ArrayOf(filter.ports)}};
}

Json ToJson(const Pipeline &pipeline) {
  return {{"index", pipeline.index ? Json(*pipeline.index) : Json()},
          {"name", ToJson(pipeline.name)},
          {"tid", pipeline.tid},
          {"thread", ToJson(pipeline.thread)},
          {"feeds", ToJson(pipeline.feeds)},
          {"filters", ArrayOf(pipeline.filters)}};
}

Json ToJson(const FilterStatus &filter) {
  return {{"pipeline", ToJson(filter.pipeline)},
          {"name", ToJson(filter.name)},
          {"values", ValuesOf(filter.values)},
          {"text", ToJson(filter.text)}};
}

Json ToJson(const Listing &listing) {
  return {{"pipelines", ArrayOf(listing.pipelines)}, {"io_bytes", listing.ioBytes}};
}

Json ToJson(const Parameter &parameter) {
  return {{"name", ToJson(parameter.name)},
          {"filter", parameter.filter.empty() ? Json() : ToJson(parameter.filter)},
          {"description", ToJson(parameter.description)},
          {"size", parameter.size}};
}

Json ToJson(const Process &process) {
  return {{"pid", process.pid},
          {"name", ToJson(process.name)},
          {"start", ToJson(process.start)},
          {"exe", ToJson(process.exe)},
          {"state", std::string(1, process.state)},
          {"threads", process.threads.size()}};
}

Json ToJson(const StatusReport &report) {
  return {{"filters", ArrayOf(report.filters)}, {"sink", ValuesOf(report.sink)}};
}

Json ToJson(const LogLine &line) {
  Json json = {{"level", ToJson(line.level)}, {"text", ToJson(WithoutColours(line.text))}};
  if (!line.HasPrefix()) return json;
  json["pid"] = line.pid;
  json["tid"] = line.tid;
  json["time"] = ToJson(line.time);
  json["version"] = ToJson(line.version);
  json["restarts"] = line.restarts;
  if (line.function.empty()) return json;
  json["function"] = ToJson(line.function);
  json["line"] = line.sourceLine;
  return json;
}

Json ToJson(const Finding &finding) {
  return {{"id", finding.id},
          {"status", NameOf(finding.status)},
          {"found", ToJson(finding.found)},
          {"remedy", ToJson(finding.remedy)}};
}

Json ToJson(const MetricFamily &family) {
  Json samples = Json::array();
  for (const MetricSample &sample : family.samples) {
    Json labels = Json::object();
    for (const auto &[name, value] : sample.labels)
      labels[name] = ToJson(value);
    samples.push_back({{"labels", std::move(labels)}, {"value", sample.value}});
  }
  return {{"name", family.kind.name},
          {"type", family.kind.type == MetricKind::Type::kCounter ? "counter" : "gauge"},
          {"help", family.kind.help},
          {"samples", std::move(samples)}};
}

std::string Dump(const Json &json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace kest::ctl
