// SPDX-License-Identifier: Apache-2.0
// What pipelines and filters have done in their cycles ("kest_process_status"). Who is asked reports it every
// 100 cycles; a pipeline that is asked has its filters report too.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "ze_kest/model.h"

namespace kest::player {

// The cycles since the last report, and the time that they took.
class CycleTally {
 public:
  using Clock = std::chrono::steady_clock;

  void Begin() { begin_ = Clock::now(); }
  // True with the last cycle of a report.
  bool End();
  // "100 cycles of 34 us, the longest 120 us"
  [[nodiscard]] std::string Text() const;

 private:
  uint32_t cycles_ = 0;
  Clock::time_point begin_;
  Clock::duration total_{};
  Clock::duration longest_{};
};

class PipelineStatus {
 public:
  // Around a cycle.
  void CycleBegins(const ZE_KEST_Pipeline_s &pipeline);
  void CycleEnds(const ZE_KEST_Pipeline_s &pipeline);

 private:
  bool running_ = false;
  CycleTally tally_;
};

class FilterStatus {
 public:
  // Around a filter's turn, the end before its data is released and committed.
  void TurnBegins(const ZE_KEST_Filter_s &filter);
  void TurnEnds(const ZE_KEST_Filter_s &filter);

 private:
  struct Flow {
    uint64_t samples;
    uint64_t metadataBytes;
  };

  bool Add(const ZE_KEST_Filter_s &filter);
  void Report(const ZE_KEST_Filter_s &filter) const;

  bool running_ = false;
  CycleTally tally_;
  uint32_t idleCycles_ = 0;  // in which nothing was moved
  Flow in_[ZE_KEST_MAX_PORTS] = {};
  Flow out_[ZE_KEST_MAX_PORTS] = {};
};

}  // namespace kest::player
