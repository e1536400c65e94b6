// SPDX-License-Identifier: Apache-2.0
// Brackets a pipeline's cycle or a filter's turn with the library's performance measurement.
#pragma once

#include "ze_kest/utility.h"

namespace kest::player {

// A record that closes its counters when destroyed: a target that changes within a cycle leaves them open.
struct PerformanceMeasure : ZE_KEST_PerformanceMeasure_s {
  PerformanceMeasure() : ZE_KEST_PerformanceMeasure_s{} {}
  ~PerformanceMeasure() {
    if (stPerfEvent.bInit == 1) ze_kest_Utility_PerfEvent_Close(&stPerfEvent);
  }
  PerformanceMeasure(const PerformanceMeasure &) = delete;
  PerformanceMeasure &operator=(const PerformanceMeasure &) = delete;
};

class MeasuredWork {
 public:
  // filter: NULL to measure the pipeline's whole cycle. measure: used for this pipeline or filter only.
  MeasuredWork(const char *pipeline, const char *filter, ZE_KEST_PerformanceMeasure_s &measure)
      : pipeline_(pipeline), filter_(filter), measure_(measure), started_(Start() == ZE_KEST_OK) {}
  ~MeasuredWork() {
    if (started_) Stop();
  }
  MeasuredWork(const MeasuredWork &) = delete;
  MeasuredWork &operator=(const MeasuredWork &) = delete;

 private:
  uint32_t Start() {
    return filter_ == nullptr
               ? ze_kest_Utility_PerformanceMeasure_StartPipelineMeasure(pipeline_, &measure_)
               : ze_kest_Utility_PerformanceMeasure_StartFilterMeasure(pipeline_, filter_, &measure_);
  }
  void Stop() {
    if (filter_ == nullptr) {
      ze_kest_Utility_PerformanceMeasure_StopPipelineMeasure(pipeline_, &measure_);
    } else {
      ze_kest_Utility_PerformanceMeasure_StopFilterMeasure(pipeline_, filter_, &measure_);
    }
  }

  const char *pipeline_;
  const char *filter_;
  ZE_KEST_PerformanceMeasure_s &measure_;
  bool started_;
};

}  // namespace kest::player
