// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/cpu_clock.h"

#include <fmt/format.h>

#include "ctl/parse/scanner.h"

namespace kest::ctl {

// "25388948 120 17": ns on a core, ns of waiting for one, turns.
std::optional<uint64_t> CpuClock::Nanoseconds(int tid) {
  const std::string text = host_.ReadProc(fmt::format("/proc/{}/task/{}/schedstat", pid_, tid));
  uint64_t ns = 0;
  return Scanner(text).Number(ns) ? std::optional(ns) : std::nullopt;
}

std::map<int, double> CpuClock::Percents(const std::vector<int> &tids) {
  std::map<int, double> percents;
  std::map<int, Reading> readings;
  for (const int tid : tids) {
    const auto ns = Nanoseconds(tid);
    if (!ns) continue;
    const Reading now = {std::chrono::steady_clock::now(), *ns};
    readings[tid] = now;
    const auto last = readings_.find(tid);
    if (last == readings_.end() || now.ns < last->second.ns) continue;
    const double elapsedNs = std::chrono::duration<double, std::nano>(now.time - last->second.time).count();
    if (elapsedNs > 0) percents[tid] = static_cast<double>(now.ns - last->second.ns) * 100.0 / elapsedNs;
  }
  readings_ = std::move(readings);
  return percents;
}

}  // namespace kest::ctl
