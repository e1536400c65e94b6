// SPDX-License-Identifier: Apache-2.0
#include "player/framework/pipeline_link.h"

namespace kest::player {

PipelineLink::PipelineLink(const PcmFormat &format, PortCapacity capacity, uint32_t wakeFrames)
    : staging_(format, capacity), wakeFrames_(wakeFrames), resumeFrames_(capacity.frames / 2) {}

bool PipelineLink::Push(PortStorage &from) {
  std::unique_lock<std::mutex> lock(mutex_);
  while (!abandoned_) {
    from.MoveInto(staging_);
    if (consumerWaits_ && staging_.FramesHeld() >= wakeFrames_) dataIsHere_.notify_one();
    if (from.IsEmpty()) return true;
    WaitForRoom(lock);
  }
  return false;
}

void PipelineLink::End() {
  const std::lock_guard<std::mutex> lock(mutex_);
  ended_ = true;
  WakeAll();
}

// What the port holds already needs no lock.
PipelineLink::Supply PipelineLink::Pull(PortStorage &to, uint32_t frames, Patience patience) {
  if (to.FramesHeld() >= frames) return Supply::kReady;
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    staging_.MoveInto(to);
    if (producerWaits_ && staging_.FramesHeld() <= resumeFrames_) roomIsFree_.notify_one();
    if (const auto supply = SupplyOf(to, frames)) return *supply;
    if (!WaitForProducer(lock, patience)) return Supply::kLate;
  }
}

void PipelineLink::Abandon() {
  const std::lock_guard<std::mutex> lock(mutex_);
  abandoned_ = true;
  WakeAll();
}

void PipelineLink::WakeAll() {
  roomIsFree_.notify_one();
  dataIsHere_.notify_one();
}

std::optional<PipelineLink::Supply> PipelineLink::SupplyOf(const PortStorage &to, uint32_t frames) const {
  if (abandoned_) return Supply::kAbandoned;
  if (to.FramesHeld() >= frames) return Supply::kReady;
  if (ended_ && staging_.IsEmpty()) return Supply::kEnded;
  return std::nullopt;
}

// The consumer may be waiting for more frames than there is room for.
void PipelineLink::WaitForRoom(std::unique_lock<std::mutex> &lock) {
  if (consumerWaits_) dataIsHere_.notify_one();
  producerWaits_ = true;
  roomIsFree_.wait(lock);
  producerWaits_ = false;
}

// Each wait gets the full patience again: a producer that delivers little by little is not late.
bool PipelineLink::WaitForProducer(std::unique_lock<std::mutex> &lock, const Patience &patience) {
  bool inTime = true;
  if (producerWaits_) roomIsFree_.notify_one();
  consumerWaits_ = true;
  if (patience) {
    inTime = dataIsHere_.wait_for(lock, *patience) == std::cv_status::no_timeout;
  } else {
    dataIsHere_.wait(lock);
  }
  consumerWaits_ = false;
  return inTime;
}

}  // namespace kest::player
