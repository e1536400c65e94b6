// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/repeats.h"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace kest::ctl {
namespace {

constexpr size_t kWindow = 64;       // samples by which a repetition is noticed
constexpr size_t kLeastRun = 128;    // of which it must have
constexpr double kLongestLag = 0.5;  // seconds
constexpr double kLoudSteps = 8.0;
constexpr size_t kLeastValues = 16;  // different ones: quiet sound has few and repeats them by chance
constexpr uint64_t kBase = 0x9E3779B97F4A7C15u;

// A number for each window, made from that of the window before it.
class RollingHash {
 public:
  explicit RollingHash(const Samples &samples) : samples_(samples) {
    for (size_t i = 0; i < kWindow; ++i) {
      hash_ = hash_ * kBase + At(i);
      outgoing_ *= i == 0 ? 1 : kBase;
    }
  }

  [[nodiscard]] uint64_t Value() const { return hash_; }
  void Advance(size_t from) { hash_ = (hash_ - At(from) * outgoing_) * kBase + At(from + kWindow); }

 private:
  [[nodiscard]] uint64_t At(size_t i) const { return static_cast<uint32_t>(samples_[i]); }

  const Samples &samples_;
  uint64_t hash_ = 0;
  uint64_t outgoing_ = 1;
};

// The whole stretch around the position that is the same as so many samples before.
Span RepeatedAround(const Samples &samples, size_t position, size_t lag) {
  Span span = {position, position};
  while (span.begin > lag && samples[span.begin - 1] == samples[span.begin - 1 - lag])
    --span.begin;
  while (span.end < samples.size() && samples[span.end] == samples[span.end - lag])
    ++span.end;
  return span;
}

bool IsDistinct(const Signal &signal, Span span) {
  if (LoudnessOf(signal, span).rms < kLoudSteps * signal.step) return false;
  const auto begin = signal.samples.begin() + static_cast<ptrdiff_t>(span.begin);
  const auto end = begin + static_cast<ptrdiff_t>(std::min(span.end - span.begin, kLeastRun));
  return std::set<int32_t>(begin, end).size() >= kLeastValues;
}

bool IsFlaw(const Signal &signal, Span span, size_t lag) {
  const size_t length = span.end - span.begin;
  const bool isTone = lag < kWindow || length > signal.samples.size() / 2;
  return length >= kLeastRun && !isTone && IsDistinct(signal, span);
}

}  // namespace

Flaws FindRepeats(const Signal &signal) {
  const Samples &samples = signal.samples;
  Flaws flaws;
  if (samples.size() < 2 * kWindow) return flaws;
  std::unordered_map<uint64_t, size_t> seen;  // where windows at multiples of their length were last
  RollingHash hash(samples);
  size_t checkedTo = 0;
  for (size_t at = 0; at + kWindow < samples.size(); hash.Advance(at), ++at) {
    const auto found = seen.find(hash.Value());
    const size_t lag = found == seen.end() ? 0 : at - found->second;
    if (lag > 0 && at >= checkedTo && signal.Seconds(lag) <= kLongestLag) {
      const Span span = RepeatedAround(samples, at, lag);
      if (IsFlaw(signal, span, lag))
        flaws.push_back(
            {span.begin, span.end, "repeat", signal.Seconds(span.end - span.begin) * 1000.0, "ms"});
      checkedTo = std::max(span.end, at + 1);
    }
    if (at % kWindow == 0) seen[hash.Value()] = at;
  }
  return flaws;
}

}  // namespace kest::ctl
