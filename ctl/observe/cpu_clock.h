// SPDX-License-Identifier: Apache-2.0
// How much of a core the threads of a process take, by what the kernel knows of them: asking costs the
// process nothing.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <vector>

#include "ctl/channel/host.h"

namespace kest::ctl {

class CpuClock {
 public:
  CpuClock(Host &host, int pid) : host_(host), pid_(pid) {}

  // In percent of a core since the last call, for each thread that was there then and is now. Empty when the
  // kernel does not say.
  std::map<int, double> Percents(const std::vector<int> &tids);

 private:
  struct Reading {
    std::chrono::steady_clock::time_point time;
    uint64_t ns;
  };
  [[nodiscard]] std::optional<uint64_t> Nanoseconds(int tid);

  Host &host_;
  int pid_;
  std::map<int, Reading> readings_;
};

}  // namespace kest::ctl
