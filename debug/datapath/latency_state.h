// SPDX-License-Identifier: Apache-2.0
// State that the commands and the two ends of a latency measurement, each on its own thread, access without a
// lock. A cycle in progress when a measurement is switched off may still set a mark that the next one finds.
#pragma once

#include "debug/datapath/filter_names.h"
#include "debug/datapath/switches.h"

namespace kest {

// The number of input cycles that are silenced before the one that gets the burst.
constexpr uint32_t kSilentCycles = 500;
constexpr uint32_t kDefaultSampleRate = 48000;

struct LatencyState {
  FilterNames stStart;
  FilterNames stEnd;
  uint32_t au32SilentCycles[ZE_KEST_MAX_PORTS];  // cycles silenced so far, by input slot of the start filter
  uint8_t bInserted;                             // the burst has been written
  uint8_t bFound;                                // the burst has been detected
  uint32_t u32MeasureIndex;
  uint32_t u32TotalBytes;  // scanned at the end filter before the hit
  uint64_t u64StartTime;   // microseconds of the monotonic clock, like the next one
  uint64_t u64EndTime;
  uint64_t u64ProcTime;  // microseconds between the two
};

extern LatencyState _stKestLatency;

// A copy of the names of both ends, for a report.
struct LatencyNames {
  FilterNamesCopy start{_stKestLatency.stStart};
  FilterNamesCopy end{_stKestLatency.stEnd};
};

// Acquire and release: a thread that sees the mark also sees everything stored before it was set.
inline bool IsMarked(const uint8_t &bMark) {
  return __atomic_load_n(&bMark, __ATOMIC_ACQUIRE) != 0;
}

inline void Mark(uint8_t &bMark) {
  __atomic_store_n(&bMark, uint8_t{1}, __ATOMIC_RELEASE);
}

}  // namespace kest
