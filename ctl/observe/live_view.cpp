// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/live_view.h"

#include <algorithm>

#include <fmt/format.h>

#include "ctl/observe/marks.h"
#include "ctl/parse/status.h"

namespace kest::ctl {
namespace {

const PortLine *Find(const PortSample &sample, const FilterKey &filter) {
  const auto found = sample.lines.find(filter);
  return found == sample.lines.end() ? nullptr : &found->second;
}

const PortState *Find(const PortLine *line, const Port &port) {
  if (line == nullptr) return nullptr;
  const auto found = std::find_if(line->ports.begin(), line->ports.end(), [&](const PortState &state) {
    return state.isInput == port.isInput && state.number == port.number;
  });
  return found == line->ports.end() ? nullptr : &*found;
}

// A line has room for about four ports.
bool IsCut(const Filter &filter, const PortLine *line) {
  return line != nullptr && std::any_of(filter.ports.begin(), filter.ports.end(), [&](const Port &port) {
           return port.connected && Find(line, port) == nullptr;
         });
}

bool NamesUnknown(const PortSample &sample, const std::vector<FilterKey> &known) {
  return std::any_of(sample.lines.begin(), sample.lines.end(), [&](const auto &entry) {
    return std::find(known.begin(), known.end(), entry.first) == known.end();
  });
}

}  // namespace

void LiveView::NoticeAnotherProcess(const Process &process) {
  if (process.pid == pid_) return;
  pid_ = process.pid;
  cpu_.emplace(context_.GetHost(), pid_);
  cpu_->Percents(process.threads);
  xruns_.clear();
  lastLook_.clear();
  isListStale_ = true;
}

LiveSample LiveView::Look() {
  LiveSample live;
  live.process = context_.GetChannel().TheProcess();
  NoticeAnotherProcess(live.process);
  if (isListStale_) {
    context_.Forget();
    distinct_ = DistinctFilters(context_.GetListing());
  }
  const PortSample sample = SamplePorts(context_.GetChannel(), distinct_, window_);
  if (!sample.isRead) {
    live.problem = fmt::format("{} does not read its commands{}", live.process.name,
                               live.process.state == 'T' ? ": it is stopped" : "");
    return live;
  }
  // The list says what those hold that are silent, and who they are.
  isListStale_ = !sample.isWhole || NamesUnknown(sample, distinct_);
  if (isListStale_) {
    context_.Forget();
    distinct_ = DistinctFilters(context_.GetListing());
  }
  AskForCutPorts(sample);
  percents_ = cpu_->Percents(live.process.threads);
  for (const auto &[tid, percent] : percents_)
    live.cpuPercent = live.cpuPercent.value_or(0.0) + percent;
  for (const Pipeline &pipeline : context_.GetListing().pipelines)
    live.pipelines.push_back(Show(pipeline, sample));
  lastLook_ = xruns_;
  return live;
}

// The status report tells the underruns of all inputs of some kinds of filters.
void LiveView::AskForCutPorts(const PortSample &sample) {
  bool isAnyCut = false;
  for (const Pipeline &pipeline : context_.GetListing().pipelines) {
    for (const Filter &filter : pipeline.filters)
      isAnyCut = isAnyCut || IsCut(filter, Find(sample, {pipeline.name, filter.name}));
  }
  if (!isAnyCut) return;
  for (const FilterStatus &filter :
       ParseStatus(context_.GetChannel().Ask({"kest_debug_list=status"}).lines).report.filters) {
    for (const auto &[name, value] : filter.values) {
      unsigned number = 0;
      if (std::sscanf(name.c_str(), "in%u.underruns", &number) == 1 && value >= 0)
        xruns_[{{filter.pipeline, filter.name}, true, number}] = static_cast<uint64_t>(value);
    }
  }
}

LivePipeline LiveView::Show(const Pipeline &pipeline, const PortSample &sample) {
  LivePipeline live;
  live.name = pipeline.name;
  live.tid = pipeline.tid;
  if (!pipeline.filters.empty()) live.state = pipeline.filters[0].state;
  const auto percent = percents_.find(pipeline.tid);
  if (percent != percents_.end()) live.cpuPercent = percent->second;
  std::vector<const PortLine *> lines;
  for (const Filter &filter : pipeline.filters) {
    lines.push_back(Find(sample, {pipeline.name, filter.name}));
    live.filters.push_back(Show(pipeline.name, filter, lines.back()));
  }
  const std::vector<Mark> marks = MarksOf(pipeline, lines);
  for (size_t i = 0; i < marks.size(); ++i) {
    const FilterKey key = {pipeline.name, live.filters[i].name};
    const bool isDistinct = std::find(distinct_.begin(), distinct_.end(), key) != distinct_.end();
    live.filters[i].mark = isDistinct ? marks[i] : Mark::kUnknown;
  }
  return live;
}

LiveFilter LiveView::Show(const std::string &pipeline, const Filter &filter, const PortLine *line) {
  LiveFilter live;
  live.name = filter.name;
  for (const Port &port : filter.ports)
    live.ports.push_back(Show({pipeline, filter.name}, port, line));
  return live;
}

LivePort LiveView::Show(const FilterKey &filter, const Port &port, const PortLine *line) {
  const PortKey key = {filter, port.isInput, port.number};
  LivePort live = {port.isInput, port.number, port.pcm.level, port.pcm.size, std::nullopt, 0};
  if (const PortState *state = Find(line, port)) {
    live.level = state->level + (port.isInput ? 0 : state->moved);
    live.size = state->size;
    xruns_[key] = state->xruns;
  }
  const auto now = xruns_.find(key);
  if (now == xruns_.end()) return live;
  live.xruns = now->second;
  const auto last = lastLook_.find(key);
  if (last != lastLook_.end() && now->second > last->second) live.newXruns = now->second - last->second;
  return live;
}

}  // namespace kest::ctl
