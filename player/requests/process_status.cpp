// SPDX-License-Identifier: Apache-2.0
#include "player/requests/process_status.h"

#include <algorithm>

#include "ze_kest/debug.h"

#include "player/base/relaxed.h"
#include "player/requests/request_names.h"

namespace kest::player {
namespace {

constexpr uint32_t kCyclesOfReport = 100;

bool IsAsked(const ZE_KEST_Pipeline_s &pipeline) {
  return LoadRelaxed(u32KestQueryProcessStatus) == ZE_KEST_TARGET_PIPELINE &&
         IsNamed(szKestQueryProcessStatusName1, pipeline.szName);
}

bool IsAsked(const ZE_KEST_Filter_s &filter) {
  if (IsAsked(*filter.pstParentPipeline)) return true;
  return LoadRelaxed(u32KestQueryProcessStatus) == ZE_KEST_TARGET_FILTER &&
         IsNamed(szKestQueryProcessStatusName1, szKestQueryProcessStatusName2, filter);
}

std::string Us(CycleTally::Clock::duration duration) {
  return std::to_string(std::chrono::duration_cast<std::chrono::microseconds>(duration).count()) + " us";
}

template <typename Flow>
std::string FlowText(const char *side, uint32_t number, const char *verb, const Flow &flow, uint64_t xruns) {
  return std::string("; ") + side + std::to_string(number) + " " + verb + " " + std::to_string(flow.samples) +
         " samples, " + std::to_string(flow.metadataBytes) + " bytes of metadata, " + std::to_string(xruns) +
         " xruns so far";
}

}  // namespace

bool CycleTally::End() {
  const Clock::duration taken = Clock::now() - begin_;
  total_ += taken;
  longest_ = std::max(longest_, taken);
  return ++cycles_ == kCyclesOfReport;
}

std::string CycleTally::Text() const {
  return std::to_string(cycles_) + " cycles of " + Us(total_ / std::max(cycles_, 1u)) + ", the longest " +
         Us(longest_);
}

void PipelineStatus::CycleBegins(const ZE_KEST_Pipeline_s &pipeline) {
  const bool wasRunning = running_;
  running_ = IsAsked(pipeline);
  if (!running_) return;
  if (!wasRunning) tally_ = CycleTally();
  tally_.Begin();
}

void PipelineStatus::CycleEnds(const ZE_KEST_Pipeline_s &pipeline) {
  if (!running_ || !tally_.End()) return;
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "[PROCESS_STATUS]%s: %s\n", pipeline.szName, tally_.Text().c_str());
  tally_ = CycleTally();
}

void FilterStatus::TurnBegins(const ZE_KEST_Filter_s &filter) {
  const bool isAsked = IsAsked(filter);
  if (!isAsked || !running_) *this = FilterStatus();
  running_ = isAsked;
  if (running_) tally_.Begin();
}

void FilterStatus::TurnEnds(const ZE_KEST_Filter_s &filter) {
  if (!running_) return;
  if (!Add(filter)) ++idleCycles_;
  if (!tally_.End()) return;
  Report(filter);
  *this = FilterStatus();
  running_ = true;
}

// False when nothing was moved.
bool FilterStatus::Add(const ZE_KEST_Filter_s &filter) {
  bool moved = false;
  for (uint32_t i = 0; i < filter.u32InPortCount; ++i) {
    const ZE_KEST_Port_s &port = *filter.apstInPort[i];
    in_[i].samples += port.stPcm.sztPcmReadSize;
    in_[i].metadataBytes += port.stMeta.sztReadSize;
    moved = moved || port.stPcm.sztPcmReadSize > 0 || port.stMeta.sztReadSize > 0;
  }
  for (uint32_t i = 0; i < filter.u32OutPortCount; ++i) {
    const ZE_KEST_Port_s &port = *filter.apstOutPort[i];
    out_[i].samples += port.stPcm.sztPcmWriteSize;
    out_[i].metadataBytes += port.stMeta.sztWriteSize;
    moved = moved || port.stPcm.sztPcmWriteSize > 0 || port.stMeta.sztWriteSize > 0;
  }
  return moved;
}

void FilterStatus::Report(const ZE_KEST_Filter_s &filter) const {
  std::string ports;
  for (uint32_t i = 0; i < filter.u32InPortCount; ++i)
    ports += FlowText("in", i, "read", in_[i], filter.apstInPort[i]->stPcm.u64PcmXrunCount);
  for (uint32_t i = 0; i < filter.u32OutPortCount; ++i)
    ports += FlowText("out", i, "wrote", out_[i], filter.apstOutPort[i]->stPcm.u64PcmXrunCount);
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "[PROCESS_STATUS]%s:%s: %s, %u idle%s\n",
                    filter.pstParentPipeline->szName, filter.szName, tally_.Text().c_str(), idleCycles_,
                    ports.c_str());
}

}  // namespace kest::player
