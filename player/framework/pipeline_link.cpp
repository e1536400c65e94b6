// SPDX-License-Identifier: Apache-2.0
#include "player/framework/pipeline_link.h"

namespace kest::player {

PipelineLink::PipelineLink(const PcmFormat &format, PortCapacity capacity) : staging_(format, capacity) {}

bool PipelineLink::Push(PortStorage &from) {
  std::unique_lock<std::mutex> lock(mutex_);
  while (!abandoned_) {
    if (from.MoveInto(staging_)) changed_.notify_all();
    if (from.IsEmpty()) return true;
    changed_.wait(lock);
  }
  return false;
}

void PipelineLink::End() {
  const std::lock_guard<std::mutex> lock(mutex_);
  ended_ = true;
  changed_.notify_all();
}

PipelineLink::Supply PipelineLink::Pull(PortStorage &to, uint32_t frames, Patience patience) {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    if (staging_.MoveInto(to)) changed_.notify_all();
    if (const auto supply = SupplyOf(to, frames)) return *supply;
    if (!WaitForProducer(lock, patience)) return Supply::kLate;
  }
}

void PipelineLink::Abandon() {
  const std::lock_guard<std::mutex> lock(mutex_);
  abandoned_ = true;
  changed_.notify_all();
}

std::optional<PipelineLink::Supply> PipelineLink::SupplyOf(const PortStorage &to, uint32_t frames) const {
  if (abandoned_) return Supply::kAbandoned;
  if (to.FramesHeld() >= frames) return Supply::kReady;
  if (ended_ && staging_.IsEmpty()) return Supply::kEnded;
  return std::nullopt;
}

// Each wait gets the full patience again: a producer that delivers little by little is not late.
bool PipelineLink::WaitForProducer(std::unique_lock<std::mutex> &lock, const Patience &patience) {
  if (patience) return changed_.wait_for(lock, *patience) == std::cv_status::no_timeout;
  changed_.wait(lock);
  return true;
}

}  // namespace kest::player
