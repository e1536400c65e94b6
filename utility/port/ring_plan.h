// SPDX-License-Identifier: Apache-2.0
// The parts of a ring that a transfer touches. Computed once per port, before the samples are moved, so that
// the loops over the samples need no wrap or bounds checks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kest {

// Consecutive whole units, followed by a unit that the end of the ring cuts: sztCut of its bytes lie inside.
struct RingSegment {
  size_t sztWhole;
  size_t sztCut;
};

struct RingPlan {
  size_t sztStart;  // offset of the first segment, in bytes
  RingSegment stFirst;
  RingSegment stSecond;  // at the start of the ring
};

// Whole units. The cases for sample widths avoid a division, for which the target has no instruction.
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

// The units that begin within the next u64Bytes bytes of a segment, including a partial last one.
inline RingSegment SegmentOf(size_t sztSegment, uint64_t u64Bytes, size_t sztUnit) {
  const size_t sztBytes = u64Bytes < sztSegment ? static_cast<size_t>(u64Bytes) : sztSegment;
  const size_t sztWhole = UnitsIn(sztBytes, sztUnit);
  const size_t sztBegun = sztBytes - sztWhole * sztUnit;
  if (sztBegun == 0) return {sztWhole, 0};
  const size_t sztRoom = sztSegment - sztWhole * sztUnit;
  return sztRoom < sztUnit ? RingSegment{sztWhole, sztRoom} : RingSegment{sztWhole + 1, 0};
}

// Plans a transfer to the end of the ring and on from its start, for at most one lap; empty when the start is
// outside the ring. A unit cut by the end of the ring counts in full, so it shortens the second segment.
inline RingPlan PlanRing(size_t sztRing, size_t sztStart, uint64_t u64Bytes, size_t sztUnit) {
  if (sztStart > sztRing || sztUnit == 0) return {};
  const RingSegment stFirst = SegmentOf(sztRing - sztStart, u64Bytes, sztUnit);
  const uint64_t u64Moved = uint64_t{sztUnit} * (stFirst.sztWhole + (stFirst.sztCut != 0 ? 1 : 0));
  const uint64_t u64Rest = u64Bytes > u64Moved ? u64Bytes - u64Moved : 0;
  if (u64Rest == 0) return {sztStart, stFirst, {}};
  return {sztStart, stFirst, SegmentOf(sztRing, u64Rest, sztUnit)};
}

}  // namespace kest
