// SPDX-License-Identifier: Apache-2.0
// Looks at a process again and again.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <tuple>

#include "ctl/commands/context.h"
#include "ctl/model/live.h"
#include "ctl/observe/cpu_clock.h"
#include "ctl/observe/port_sampler.h"

namespace kest::ctl {

class LiveView {
 public:
  // window: how long to wait for filters that do not run.
  LiveView(Context &context, std::chrono::milliseconds window) : context_(context), window_(window) {}

  // Throws when the process cannot be asked.
  LiveSample Look();

 private:
  using PortKey = std::tuple<FilterKey, bool, unsigned>;

  void NoticeAnotherProcess(const Process &process);
  void AskForCutPorts(const PortSample &sample);
  LivePipeline Show(const Pipeline &pipeline, const PortSample &sample);
  LiveFilter Show(const std::string &pipeline, const Filter &filter, const PortLine *line);
  LivePort Show(const FilterKey &filter, const Port &port, const PortLine *line);

  Context &context_;
  std::chrono::milliseconds window_;
  int pid_ = 0;
  std::optional<CpuClock> cpu_;
  std::map<int, double> percents_;
  std::vector<FilterKey> distinct_;
  bool isListStale_ = true;
  std::map<PortKey, uint64_t> xruns_;     // as last told
  std::map<PortKey, uint64_t> lastLook_;  // at the last look
};

}  // namespace kest::ctl
