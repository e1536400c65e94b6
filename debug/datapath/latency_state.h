// SPDX-License-Identifier: Apache-2.0
// What the commands and the two sides of a latency measurement, each on a thread of its own, share without a
// lock. A cycle that is under way when a measurement is switched off may still leave a mark in the next one.
#pragma once

#include "debug/datapath/filter_names.h"
#include "debug/datapath/switches.h"

namespace kest {

// Input cycles of the start filter: silent ones, and the burst in the one behind them.
constexpr uint32_t kSilentCycles = 500;
constexpr uint32_t kDefaultSampleRate = 48000;

struct LatencyState {
  FilterNames stStart;
  FilterNames stEnd;
  uint32_t au32SilentCycles[ZE_KEST_MAX_PORTS];  // cycles served, of every input slot of the start filter
  uint8_t bInserted;                             // the burst has been written
  uint8_t bFound;                                // the burst has been detected
  uint32_t u32MeasureIndex;
  uint32_t u32TotalBytes;  // scanned at the end filter before the hit
  uint64_t u64StartTime;   // microseconds of the monotonic clock, as the others
  uint64_t u64EndTime;
  uint64_t u64ProcTime;
};

extern LatencyState _stKestLatency;

// The names of both sides as they stand, for a report.
struct LatencyNames {
  FilterNamesCopy start{_stKestLatency.stStart};
  FilterNamesCopy end{_stKestLatency.stEnd};
};

// Who finds a mark set finds what was stored before it.
inline bool IsMarked(const uint8_t &bMark) {
  return __atomic_load_n(&bMark, __ATOMIC_ACQUIRE) != 0;
}

inline void Mark(uint8_t &bMark) {
  __atomic_store_n(&bMark, uint8_t{1}, __ATOMIC_RELEASE);
}

}  // namespace kest
