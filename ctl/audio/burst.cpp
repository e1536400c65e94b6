// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/burst.h"

#include <algorithm>

namespace kest::ctl {
namespace {

constexpr size_t kWordBytes = 4;
constexpr size_t kBurstSamples = 48;
constexpr size_t kSilentSamples = 64;  // before the burst

bool IsZero(std::string_view recording, size_t sample) {
  const std::string_view word = recording.substr(sample * kWordBytes, kWordBytes);
  return std::all_of(word.begin(), word.end(), [](char byte) { return byte == 0; });
}

// How many samples before the one at the position belong to the burst; empty unless silence is before them.
std::optional<size_t> BurstBefore(std::string_view recording, size_t sample) {
  size_t before = 0;
  while (before < sample && before < kBurstSamples && !IsZero(recording, sample - before - 1))
    ++before;
  const size_t onset = sample - before;
  if (onset < kSilentSamples) return std::nullopt;
  for (size_t i = onset - kSilentSamples; i < onset; ++i) {
    if (!IsZero(recording, i)) return std::nullopt;
  }
  return before;
}

std::optional<size_t> BurstBeforeHit(const BurstRecording &recording) {
  if (recording.fromHit.size() < kWordBytes) return std::nullopt;
  for (size_t at = recording.all.find(recording.fromHit); at != std::string_view::npos;
       at = recording.all.find(recording.fromHit, at + 1)) {
    if (at % kWordBytes != 0) continue;
    if (const auto before = BurstBefore(recording.all, at / kWordBytes)) return before;
  }
  return std::nullopt;
}

// A search that goes round the ring's end looks at the word behind it too, and counts one too many.
bool IsCountedLate(const LatencyReport &report, bool hasWordBehindRing) {
  return hasWordBehindRing && report.hitOffset > 0 && report.hitAddress < report.cycle.start;
}

}  // namespace

std::optional<int64_t> ExactSamples(const LatencyReport &report, const BurstRecording &recording,
                                    bool hasWordBehindRing) {
  const auto before = BurstBeforeHit(recording);
  if (!before || !report.totalBytes) return std::nullopt;
  const auto counted = static_cast<int64_t>(*report.totalBytes / kWordBytes);
  const int64_t late = IsCountedLate(report, hasWordBehindRing) ? 1 : 0;
  return counted - late - static_cast<int64_t>(*before) - 1;  // the burst's first sample is 0
}

}  // namespace kest::ctl
