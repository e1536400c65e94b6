// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/port_sampler.h"

#include <algorithm>

#include "ctl/channel/interrupt.h"
#include "ctl/channel/log_lines.h"
#include "ctl/channel/write_failure.h"
#include "ctl/observe/switched_on.h"
#include "ctl/parse/port_line.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::microseconds kPause{500};
constexpr std::chrono::milliseconds kUnreadPatience{50};

// Lines that nobody reads would pile up. Where what is unread cannot be seen, a stopped process can.
bool ReadsItsCommands(Channel &channel, const Process &process) {
  const std::string pipe = channel.Settings().directory + "D";
  if (!channel.GetHost().UnreadBytes(pipe)) return process.state != 'T' && process.state != 't';
  const auto deadline = Clock::now() + kUnreadPatience;
  while (channel.GetHost().UnreadBytes(pipe).value_or(0) > 0) {
    if (Clock::now() > deadline) return false;
    Pause(kPause);
  }
  return true;
}

void TakeLines(LogLines &log, PortSample &sample) {
  for (const std::string &text : log.Next()) {
    auto line = ParsePortLine(text);
    if (!line || line->kind != PortLine::Kind::kPcm) continue;
    sample.lines[{line->pipeline, line->filter}] = *line;
    sample.all.push_back(*std::move(line));
  }
}

bool HasAll(const PortSample &sample, const std::vector<FilterKey> &filters) {
  return std::all_of(filters.begin(), filters.end(),
                     [&](const FilterKey &filter) { return sample.lines.count(filter) > 0; });
}

}  // namespace

std::vector<FilterKey> DistinctFilters(const Listing &listing) {
  std::map<FilterKey, int> counts;
  for (const Pipeline &pipeline : listing.pipelines) {
    for (const Filter &filter : pipeline.filters)
      ++counts[{pipeline.name, filter.name}];
  }
  std::vector<FilterKey> distinct;
  for (const auto &[filter, count] : counts) {
    if (count == 1) distinct.push_back(filter);
  }
  return distinct;
}

PortSample SamplePorts(Channel &channel, const std::vector<FilterKey> &filters,
                       std::chrono::milliseconds window) {
  const Process process = channel.TheProcess();
  const std::shared_ptr<void> lock = channel.LockOut();
  PortSample sample;
  sample.isRead = ReadsItsCommands(channel, process);
  if (!sample.isRead || filters.empty()) return sample;
  const std::string pipe = channel.Settings().directory + "D";
  LogLines log(channel.GetHost(), channel.Settings().directory);
  SwitchedOn portLines(channel, {kPortLinesOff});
  const WriteResult written = channel.GetHost().WriteToPipe(pipe, std::string(kPortLinesOn) + "\n");
  if (written != WriteResult::kWritten) throw WriteFailure(channel.GetHost(), pipe, written);
  for (const auto deadline = Clock::now() + window; !HasAll(sample, filters) && Clock::now() < deadline;) {
    Pause(kPause);
    TakeLines(log, sample);
  }
  sample.isWhole = HasAll(sample, filters);
  if (!sample.isWhole && channel.GetHost().UnreadBytes(pipe).value_or(0) > 0) {
    sample.isRead = false;
    portLines.LeaveOff();
    return sample;
  }
  portLines.Off();
  TakeLines(log, sample);  // what came until then
  return sample;
}

}  // namespace kest::ctl
