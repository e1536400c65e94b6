// SPDX-License-Identifier: Apache-2.0
// A chain of filters that runs on its own thread.
#pragma once

#include <atomic>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "player/framework/filter.h"
#include "player/framework/pipeline_link.h"
#include "player/requests/process_status.h"

namespace kest::player {

class Pipeline {
 public:
  // inputPatience: how long an input may keep a running cycle waiting before it counts as an underrun.
  Pipeline(const char *name, PipelineLink::Patience inputPatience);
  ~Pipeline();
  Pipeline(const Pipeline &) = delete;
  Pipeline &operator=(const Pipeline &) = delete;

  // Set up the chain before Start. FeedInto connects the last filter to the first one of the other pipeline;
  // the link has the format of this one's output.
  void Append(std::unique_ptr<Filter> filter);
  void FeedInto(Pipeline &fed, PipelineLink &link);
  [[nodiscard]] const PcmFormat &OutputFormat() const { return filters_.back()->OutputFormat(); }
  [[nodiscard]] const Filter &LastFilter() const { return *filters_.back(); }
  [[nodiscard]] const std::vector<std::unique_ptr<Filter>> &Filters() const { return filters_; }

  // Returns once the library has registered the pipeline, so that its lists keep the order of the starts.
  void Start();
  // Ends the run after the current cycle; data still in the pipeline is dropped. Callable from any thread.
  void RequestStop();
  // Waits for the end of the run. Rethrows what ended it early.
  void Join();
  [[nodiscard]] bool HasEnded() const { return ended_; }

 private:
  struct LinkedPort {
    PipelineLink *link;
    PortStorage *port;
    bool ended = false;
  };

  PortStorage &AddPort(const PcmFormat &format, PortCapacity capacity);
  void FeedFrom(const PcmFormat &format, PipelineLink &link);
  void Run();
  void RunRegistered();
  void RunCycles();
  bool CollectInputs(PipelineLink::Patience patience);
  bool Collect(LinkedPort &input, PipelineLink::Patience patience);
  bool RunFilters();
  bool HandOverOutputs();
  void LeaveLinks();
  void SetState(uint32_t state);

  ZE_KEST_Pipeline_s record_{};
  PerformanceMeasure measure_;
  PipelineStatus status_;
  PipelineLink::Patience inputPatience_;
  std::vector<std::unique_ptr<PortStorage>> ports_;
  std::vector<std::unique_ptr<Filter>> filters_;
  std::vector<LinkedPort> inputs_;
  std::vector<LinkedPort> outputs_;
  std::vector<std::string> fedPipelines_;
  std::promise<void> registered_;
  std::thread thread_;
  std::atomic<bool> stopRequested_{false};
  std::atomic<bool> ended_{false};
  std::exception_ptr failure_;
};

}  // namespace kest::player
