// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/signal.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kest::ctl {

Signal SignalOf(Samples samples, unsigned rate) {
  Signal signal;
  signal.rate = rate;
  int64_t step = 0;
  for (const int32_t sample : samples)
    step = std::gcd(step, int64_t{sample});
  if (!samples.empty()) {
    const auto [least, most] = std::minmax_element(samples.begin(), samples.end());
    signal.least = *least;
    signal.most = *most;
  }
  signal.step = step == 0 ? 1.0 : static_cast<double>(step);
  signal.samples = std::move(samples);
  return signal;
}

Loudness LoudnessOf(const Signal &signal, Span span) {
  if (span.begin >= span.end) return {};
  double sum = 0.0;
  double squares = 0.0;
  for (size_t i = span.begin; i < span.end; ++i) {
    const double sample = signal.samples[i];
    sum += sample;
    squares += sample * sample;
  }
  const auto count = static_cast<double>(span.end - span.begin);
  const double mean = sum / count;
  return {mean, std::sqrt(std::max(0.0, squares / count - mean * mean))};
}

void DropNear(Flaws &flaws, const Flaws &others, size_t distance) {
  const auto isNear = [&](const Flaw &flaw) {
    return std::any_of(others.begin(), others.end(), [&](const Flaw &other) {
      return flaw.begin <= other.end + distance && other.begin <= flaw.end + distance;
    });
  };
  flaws.erase(std::remove_if(flaws.begin(), flaws.end(), isNear), flaws.end());
}

}  // namespace kest::ctl
