// SPDX-License-Identifier: Apache-2.0
// Tells the library's timing trace when a pipeline's cycle and its filters begin and end. Takes no time
// stamps unless the trace is on.
#pragma once

#include <chrono>

#include "ze_kest/debug.h"

namespace kest::player {

class CycleTrace {
 public:
  // Marks the beginning of the cycle.
  explicit CycleTrace(const char *pipeline)
      : pipeline_(pipeline), watched_(ze_kest_Debug_Io_Is_Enable() != 0), startUs_(watched_ ? NowUs() : 0) {}

  void FilterStarts(const char *filter) const { Tell(filter, ZE_KEST_IO_FILTER_START); }
  void FilterEnds(const char *filter) const { Tell(filter, ZE_KEST_IO_FILTER_END); }
  void PipelineEnds() const { Tell(nullptr, ZE_KEST_IO_PIPELINE_END); }

 private:
  static uint64_t NowUs() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
  }

  void Tell(const char *filter, uint32_t type) const {
    if (watched_) ze_kest_Debug_Io(pipeline_, filter, type, startUs_, NowUs());
  }

  const char *pipeline_;
  bool watched_;
  uint64_t startUs_;
};

}  // namespace kest::player
