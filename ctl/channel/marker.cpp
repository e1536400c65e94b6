// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/marker.h"

#include <atomic>
#include <chrono>

#include <fmt/format.h>
#include <unistd.h>

namespace kest::ctl {

Marker Marker::Next() {
  // Begins at the time, since another run may have had this process's id and its lines may still be in the
  // pipe.
  static std::atomic<uint64_t> sequence =
      static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch() /
                            std::chrono::milliseconds(1)) %
      1'000'000'000;
  return Marker(fmt::format("kestctl.{}.{}", getpid(), sequence++));
}

}  // namespace kest::ctl
