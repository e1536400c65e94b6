// SPDX-License-Identifier: Apache-2.0
// Hands data over from one pipeline's output port to another's input port, across their threads.
//
// Data from the producer waits in a staging port. When it is full the producer waits, when it is empty the
// consumer does.
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

  PipelineLink(const PcmFormat &format, PortCapacity capacity);

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
  bool WaitForProducer(std::unique_lock<std::mutex> &lock, const Patience &patience);

  std::mutex mutex_;
  std::condition_variable changed_;
  PortStorage staging_;
  bool ended_ = false;
  bool abandoned_ = false;
};

}  // namespace kest::player
