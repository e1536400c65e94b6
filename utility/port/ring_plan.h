// SPDX-License-Identifier: Apache-2.0
// Which parts of a ring a transfer touches. Worked out once per port, before the samples are moved, so that
// the loops over them have neither a wrap nor a bound to test.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kest {

// Whole units one after another, and behind them the bytes that a unit cut by the ring's end has inside.
struct RingSegment {
  size_t sztWhole;
  size_t sztCut;
};

struct RingPlan {
  size_t sztStart;  // offset of the first segment, in bytes
  RingSegment stFirst;
  RingSegment stSecond;  // from the ring's start
};

// Whole units; those of samples without the division that the target does not have.
inline size_t UnitsIn(size_t sztBytes, size_t sztUnit) {
  switch (sztUnit) {
    case 1:
      return sztBytes;
    case 2:
      return sztBytes / 2;
    case 3:
      return sztBytes / 3;
    case 4:
      return sztBytes / 4;
    default:
      return sztBytes / sztUnit;
  }
}

// The units that begin within the next u64Bytes bytes of a segment; a partial last one counts.
inline RingSegment SegmentOf(size_t sztSegment, uint64_t u64Bytes, size_t sztUnit) {
  const size_t sztBytes = u64Bytes < sztSegment ? static_cast<size_t>(u64Bytes) : sztSegment;
  const size_t sztWhole = UnitsIn(sztBytes, sztUnit);
  const size_t sztBegun = sztBytes - sztWhole * sztUnit;
  if (sztBegun == 0) return {sztWhole, 0};
  const size_t sztRoom = sztSegment - sztWhole * sztUnit;
  return sztRoom < sztUnit ? RingSegment{sztWhole, sztRoom} : RingSegment{sztWhole + 1, 0};
}

// Up to the ring's end and on from its start for at most one lap; nothing when the start lies outside.
// A unit cut by the ring's end counts whole, so it shortens what follows.
inline RingPlan PlanRing(size_t sztRing, size_t sztStart, uint64_t u64Bytes, size_t sztUnit) {
  if (sztStart > sztRing || sztUnit == 0) return {};
  const RingSegment stFirst = SegmentOf(sztRing - sztStart, u64Bytes, sztUnit);
  const uint64_t u64Moved = uint64_t{sztUnit} * (stFirst.sztWhole + (stFirst.sztCut != 0 ? 1 : 0));
  const uint64_t u64Rest = u64Bytes > u64Moved ? u64Bytes - u64Moved : 0;
  if (u64Rest == 0) return {sztStart, stFirst, {}};
  return {sztStart, stFirst, SegmentOf(sztRing, u64Rest, sztUnit)};
}

}  // namespace kest
