// SPDX-License-Identifier: Apache-2.0
// Hands data over from one pipeline's output port to another's input port, across their threads.
//
// Data from the producer waits in a staging port. When it is full the producer waits until half of it is
// free, when it is empty the consumer does: each side is woken once for many cycles, because waking a thread
// costs more than a cycle of most filters.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

#include "player/framework/port_storage.h"

namespace kest::player {

class PipelineLink {
 public:
  using Patience = std::optional<std::chrono::microseconds>;  // none: waits for as long as it takes

  enum class Supply {
    kReady,     // the port holds the frames that were asked for
    kLate,      // they did not come in time
    kEnded,     // the producer has ended and the port holds the last of its data
    kAbandoned  // the consumer was told to stop
  };

  // wakeFrames: a waiting consumer sleeps on until the staging port holds so many frames, the producer ends,
  // or the producer has to wait itself. At most the capacity.
  PipelineLink(const PcmFormat &format, PortCapacity capacity, uint32_t wakeFrames);

  // Producer: hands over everything that the port holds, waiting for room. False when nobody consumes it any
  // more.
  bool Push(PortStorage &from);
  // Producer: nothing more will come.
  void End();

  // Consumer: moves what there is into the port, waiting until it holds the frames.
  Supply Pull(PortStorage &to, uint32_t frames, Patience patience);
  // Consumer, or whoever stops the run: nothing more will be taken. Ends all waits.
  void Abandon();

 private:
  [[nodiscard]] std::optional<Supply> SupplyOf(const PortStorage &to, uint32_t frames) const;
  void WaitForRoom(std::unique_lock<std::mutex> &lock);
  bool WaitForProducer(std::unique_lock<std::mutex> &lock, const Patience &patience);
  void WakeAll();

  std::mutex mutex_;
  std::condition_variable roomIsFree_;
  std::condition_variable dataIsHere_;
  PortStorage staging_;
  const uint32_t wakeFrames_;
  const uint32_t resumeFrames_;  // the producer goes on when the staging port holds no more
  bool producerWaits_ = false;
  bool consumerWaits_ = false;
  bool ended_ = false;
  bool abandoned_ = false;
};

}  // namespace kest::player
