// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"
#include "ctl/model/port_name.h"
#include "ctl/parse/listing.h"
#include "ctl/render/escape.h"
#include "ctl/render/table.h"

namespace kest::ctl {
namespace {

constexpr auto kRight = Table::Align::kRight;

std::string Show(const Fill &fill) {
  return fmt::format("{}/{}", fill.level, fill.size);
}

std::string IndexOf(const Pipeline &pipeline) {
  return pipeline.index ? std::to_string(*pipeline.index) : "-";
}

// "in0 768/1024  out0 0/1024"
std::string ShowPorts(const Filter &filter) {
  std::vector<std::string> ports;
  for (const Port &port : filter.ports) {
    ports.push_back(
        fmt::format("{} {}{}", PortName(port), Show(port.pcm), port.connected ? "" : " (not connected)"));
  }
  return fmt::format("{}", fmt::join(ports, "  "));
}

std::string Feeds(const Pipeline &pipeline) {
  return fmt::format("{}", fmt::join(pipeline.feeds, ", "));
}

std::string ShowAll(const Listing &listing) {
  Table table({{"IDX", kRight}, {"NAME"}, {"STATE"}, {"TID", kRight}, {"PORTS, SAMPLES"}, {"FEEDS"}});
  for (const Pipeline &pipeline : listing.pipelines) {
    table.Add({IndexOf(pipeline), pipeline.name, "", std::to_string(pipeline.tid), "", Feeds(pipeline)});
    for (const Filter &filter : pipeline.filters) {
      table.Add({std::to_string(filter.index), "  " + filter.name, filter.state, std::to_string(filter.tid),
                 ShowPorts(filter)});
    }
  }
  return table.IsEmpty() ? "nothing is registered\n" : table.Text();
}

std::string ShowPipelines(const Listing &listing) {
  Table table({{"IDX", kRight}, {"PIPELINE"}, {"TID", kRight}, {"THREAD"}, {"FILTERS", kRight}, {"FEEDS"}});
  for (const Pipeline &pipeline : listing.pipelines) {
    table.Add({IndexOf(pipeline), pipeline.name, std::to_string(pipeline.tid), pipeline.thread,
               std::to_string(pipeline.filters.size()), Feeds(pipeline)});
  }
  return table.Text();
}

std::string ShowFilters(const Listing &listing) {
  Table table({{"IDX", kRight},
               {"PIPELINE"},
               {"FILTER"},
               {"STATE"},
               {"THREAD"},
               {"DS", kRight},
               {"TGT", kRight},
               {"AUTO"},
               {"CMDS"}});
  for (const Pipeline &pipeline : listing.pipelines) {
    for (const Filter &filter : pipeline.filters) {
      table.Add({std::to_string(filter.index), pipeline.name, filter.name, filter.state, filter.thread,
                 std::to_string(filter.ds), std::to_string(filter.tgt), filter.autoConsume ? "yes" : "no",
                 filter.takesCommands ? "yes" : "no"});
    }
  }
  return table.Text();
}

std::string ShowPortTable(const Listing &listing) {
  Table table({{"PIPELINE"},
               {"FILTER"},
               {"PORT"},
               {"CONN"},
               {"SAMPLES", kRight},
               {"GROUP BYTES"},
               {"METADATA", kRight},
               {"RAW", kRight}});
  for (const Pipeline &pipeline : listing.pipelines) {
    for (const Filter &filter : pipeline.filters) {
      for (const Port &port : filter.ports) {
        table.Add({pipeline.name, filter.name, PortName(port), port.connected ? "yes" : "no", Show(port.pcm),
                   fmt::format("{}", fmt::join(port.groupBytes, " ")), Show(port.metadata), Show(port.raw)});
      }
    }
  }
  return table.Text() + fmt::format("{} bytes in all ports\n", listing.ioBytes);
}

std::string ShowParameters(const std::vector<Parameter> &parameters) {
  Table table({{"FILTER"}, {"PARAMETER"}, {"BYTES", kRight}, {"DESCRIPTION"}});
  for (const Parameter &parameter : parameters) {
    table.Add({parameter.filter.empty() ? "-" : parameter.filter, parameter.name,
               std::to_string(parameter.size), parameter.description});
  }
  return table.IsEmpty() ? "the process names no parameters\n" : table.Text();
}

Result ListParameters(Context &context) {
  Result result;
  result.data["parameters"] = Json::array();
  for (const Parameter &parameter : context.GetParameters())
    result.data["parameters"].push_back(ToJson(parameter));
  result.text = ShowParameters(context.GetParameters());
  return result;
}

struct View {
  const char *name;
  std::string (*show)(const Listing &listing);
};

constexpr std::array<View, 4> kViews = {
    {{"", ShowAll}, {"pipelines", ShowPipelines}, {"filters", ShowFilters}, {"ports", ShowPortTable}}};

Json WithPid(Json pipelines, const Process &process) {
  for (Json &pipeline : pipelines)
    pipeline["pid"] = process.pid;
  return pipelines;
}

std::vector<int> TidsIn(const Lines &lines) {
  std::vector<int> tids;
  for (const Pipeline &pipeline : ParseListing(lines).listing.pipelines) {
    tids.push_back(pipeline.tid);
    for (const Filter &filter : pipeline.filters)
      tids.push_back(filter.tid);
  }
  return tids;
}

// Of every process that reads the pipe, one after the other.
Result ListEach(Context &context, const View &view) {
  const auto isWhole = [](const Lines &lines) { return ParseListing(lines).isWhole; };
  Result result;
  result.data = {{"pipelines", Json::array()}, {"io_bytes", 0}};
  for (const ProcessReply &reply : context.GetChannel().AskEach("kest_debug_list=print", isWhole, TidsIn)) {
    const Listing listing = ParseListing(reply.lines).listing;
    for (Json &pipeline : WithPid(ToJson(listing)["pipelines"], reply.process))
      result.data["pipelines"].push_back(std::move(pipeline));
    result.data["io_bytes"] = result.data["io_bytes"].get<uint64_t>() + listing.ioBytes;
    result.text += fmt::format("{}{} ({})\n{}", result.text.empty() ? "" : "\n", Escape(reply.process.name),
                               reply.process.pid, view.show(listing));
  }
  return result;
}

bool ConcernsSeveral(Context &context) {
  const Settings &settings = context.GetSettings();
  return !settings.anyProcess && !settings.pid && context.GetChannel().GetReaders().processes.size() > 1;
}

}  // namespace

Result RunLs(Context &context, const Arguments &arguments) {
  const std::string what = arguments.words.empty() ? "" : arguments.words[0];
  if (what == "parameters") return ListParameters(context);
  const auto view =
      std::find_if(kViews.begin(), kViews.end(), [&](const View &known) { return known.name == what; });
  if (view == kViews.end()) {
    throw CtlError(ExitCode::kUsage, fmt::format("ls does not know \"{}\"", what),
                   "it lists pipelines, filters, ports or parameters; without a word, what runs");
  }
  if (ConcernsSeveral(context)) return ListEach(context, *view);
  Result result;
  result.data = ToJson(context.GetListing());
  result.text = view->show(context.GetListing());
  return result;
}

}  // namespace kest::ctl
