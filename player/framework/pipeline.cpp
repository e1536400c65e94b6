// SPDX-License-Identifier: Apache-2.0
#include "player/framework/pipeline.h"

#include <algorithm>

#include <pthread.h>

#include "ze_kest/utility.h"

#include "player/base/relaxed.h"
#include "player/framework/cycle_trace.h"
#include "player/framework/registration.h"

namespace kest::player {
namespace {

enum PipelineState : uint32_t { kStop = 2, kPrepare = 3, kRun = 4, kDrain = 6 };

}  // namespace

Pipeline::Pipeline(const char *name, PipelineLink::Patience inputPatience) : inputPatience_(inputPatience) {
  ze_kest_Utility_Strncpy(record_.szName, name, sizeof(record_.szName) - 1);
  record_.u8AutoConsume = 1;
  SetState(kPrepare);
}

Pipeline::~Pipeline() {
  RequestStop();
  if (thread_.joinable()) thread_.join();
}

void Pipeline::Append(std::unique_ptr<Filter> filter) {
  filter->SetParent(record_);
  if (!filters_.empty()) {
    PortStorage &port = AddPort(OutputFormat(), filter->InputCapacity());
    filters_.back()->ConnectOutput(port);
    filter->ConnectInput(port);
  }
  filters_.push_back(std::move(filter));
}

void Pipeline::FeedFrom(const PcmFormat &format, PipelineLink &link) {
  PortStorage &port = AddPort(format, filters_.front()->InputCapacity());
  filters_.front()->ConnectInput(port);
  inputs_.push_back({&link, &port});
}

void Pipeline::FeedInto(Pipeline &fed, PipelineLink &link) {
  PortStorage &port = AddPort(OutputFormat(), PortCapacity::ForFrames(kCycleFrames));
  filters_.back()->ConnectOutput(port);
  outputs_.push_back({&link, &port});
  fedPipelines_.emplace_back(fed.record_.szName);
  fed.FeedFrom(OutputFormat(), link);
}

PortStorage &Pipeline::AddPort(const PcmFormat &format, PortCapacity capacity) {
  ports_.push_back(std::make_unique<PortStorage>(format, capacity));
  return *ports_.back();
}

void Pipeline::Start() {
  for (const auto &filter : filters_) {
    filter->AnnounceFormat();
  }
  thread_ = std::thread([this] { Run(); });
  registered_.get_future().wait();
}

void Pipeline::RequestStop() {
  stopRequested_ = true;
  for (const auto &filter : filters_) {
    filter->StopWaiting();
  }
  for (const LinkedPort &input : inputs_) {
    input.link->Abandon();
  }
  for (const LinkedPort &output : outputs_) {
    output.link->Abandon();
  }
}

void Pipeline::Join() {
  thread_.join();
  if (failure_) std::rethrow_exception(failure_);
}

void Pipeline::Run() {
  pthread_setname_np(pthread_self(), std::string(record_.szName).substr(0, 15).c_str());
  RunRegistered();
  ended_ = true;
}

// The registration ends before the filters are destroyed, whatever ends the run.
void Pipeline::RunRegistered() {
  const Registration registration(record_, filters_, fedPipelines_);
  registered_.set_value();
  SetState(kRun);
  try {
    RunCycles();
    for (const auto &filter : filters_) {
      filter->Finish();
    }
  } catch (...) {
    failure_ = std::current_exception();
  }
  SetState(kStop);
  LeaveLinks();
}

// The first cycle has no time limit: it fills an empty chain, so its data cannot be late.
void Pipeline::RunCycles() {
  PipelineLink::Patience patience;
  while (!stopRequested_ && CollectInputs(patience)) {
    filters_.front()->AwaitInput();
    const bool ended = RunFilters();
    if (!HandOverOutputs() || ended) return;
    patience = inputPatience_;
  }
}

// Waits until every input that has not ended can fill a cycle. Otherwise the filters would take an input that
// is merely late for an empty one.
bool Pipeline::CollectInputs(PipelineLink::Patience patience) {
  return std::all_of(inputs_.begin(), inputs_.end(),
                     [&](LinkedPort &input) { return Collect(input, patience); });
}

bool Pipeline::Collect(LinkedPort &input, PipelineLink::Patience patience) {
  if (!input.ended) {
    auto supply = input.link->Pull(*input.port, kCycleFrames, patience);
    if (supply == PipelineLink::Supply::kLate) {
      filters_.front()->CountInputXrun(static_cast<uint32_t>(&input - inputs_.data()));
      supply = input.link->Pull(*input.port, kCycleFrames, std::nullopt);
    }
    if (supply == PipelineLink::Supply::kAbandoned) return false;
    input.ended = supply == PipelineLink::Supply::kEnded;
  }
  if (input.ended && input.port->FramesHeld() == 0) input.port->Disconnect();
  return true;
}

// Runs one turn of each filter. True when the last one has passed everything on.
bool Pipeline::RunFilters() {
  bool upstreamEnded =
      std::all_of(inputs_.begin(), inputs_.end(), [](const LinkedPort &input) { return input.ended; });
  const MeasuredWork measured(record_.szName, nullptr, measure_);
  status_.CycleBegins(record_);
  const CycleTrace trace(record_.szName);
  for (const auto &filter : filters_) {
    trace.FilterStarts(filter->Record().szName);
    filter->RunCycle(upstreamEnded);
    trace.FilterEnds(filter->Record().szName);
    upstreamEnded = filter->Ended();
  }
  trace.PipelineEnds();
  status_.CycleEnds(record_);
  if (filters_.front()->Ended()) SetState(kDrain);
  return upstreamEnded;
}

bool Pipeline::HandOverOutputs() {
  return std::all_of(outputs_.begin(), outputs_.end(),
                     [](const LinkedPort &output) { return output.link->Push(*output.port); });
}

// Lets the neighbours continue without this pipeline, also after a failure.
void Pipeline::LeaveLinks() {
  for (const LinkedPort &input : inputs_) {
    input.link->Abandon();
  }
  for (const LinkedPort &output : outputs_) {
    output.link->End();
  }
}

void Pipeline::SetState(uint32_t state) {
  StoreRelaxed(record_.u32State, state);
}

}  // namespace kest::player
