// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/clicks.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kest::ctl {
namespace {

constexpr size_t kOrder = 24;    // of the linear prediction
constexpr size_t kFrame = 2048;  // samples from which the prediction is learnt
constexpr size_t kHop = 512;     // samples in its middle for which it is used
constexpr double kNoiseFloor = 1e-9;

constexpr double kBlock = 0.001;      // seconds; errors are compared in such blocks
constexpr size_t kSkipped = 1;        // blocks beside one's own in which a click rings on
constexpr size_t kAround = 20;        // blocks on each side with which it is compared
constexpr double kTimesAround = 8.0;  // the bursts of plosives reach 6
constexpr double kLeastSteps = 32.0;

using Predictor = std::array<double, kOrder>;

std::vector<double> Autocorrelation(const Signal &signal, size_t begin, size_t end) {
  const size_t count = end - begin;
  std::vector<double> windowed(count);
  for (size_t i = 0; i < count; ++i) {
    const double window =
        0.5 - 0.5 * std::cos(2.0 * M_PI * (static_cast<double>(i) + 0.5) / static_cast<double>(count));
    windowed[i] = window * signal.samples[begin + i] / signal.step;
  }
  std::vector<double> correlation(kOrder + 1, 0.0);
  for (size_t lag = 0; lag <= kOrder; ++lag) {
    for (size_t i = lag; i < count; ++i)
      correlation[lag] += windowed[i] * windowed[i - lag];
  }
  correlation[0] += correlation[0] * kNoiseFloor + 1.0;
  return correlation;
}

// The recursion of Levinson and Durbin.
Predictor PredictorFor(const std::vector<double> &correlation) {
  Predictor predictor{};
  double error = correlation[0];
  for (size_t i = 0; i < kOrder; ++i) {
    double reflection = correlation[i + 1];
    for (size_t j = 0; j < i; ++j)
      reflection -= predictor[j] * correlation[i - j];
    reflection /= error;
    const Predictor before = predictor;
    predictor[i] = reflection;
    for (size_t j = 0; j < i; ++j)
      predictor[j] = before[j] - reflection * before[i - 1 - j];
    error *= 1.0 - reflection * reflection;
  }
  return predictor;
}

// By how much each sample differs from what is foreseen, in steps.
std::vector<double> Errors(const Signal &signal) {
  const size_t count = signal.samples.size();
  std::vector<double> errors(count, 0.0);
  for (size_t hop = kOrder; hop < count; hop += kHop) {
    const size_t end = std::min(hop + kHop, count);
    const size_t begin = hop > (kFrame - kHop) / 2 ? hop - (kFrame - kHop) / 2 : 0;
    const Predictor predictor = PredictorFor(Autocorrelation(signal, begin, std::min(begin + kFrame, count)));
    for (size_t i = hop; i < end; ++i) {
      double foreseen = 0.0;
      for (size_t j = 0; j < kOrder; ++j)
        foreseen += predictor[j] * signal.samples[i - 1 - j];
      errors[i] = std::abs(signal.samples[i] - foreseen) / signal.step;
    }
  }
  return errors;
}

// The position of the largest error of each block.
std::vector<size_t> Peaks(const std::vector<double> &errors, size_t block) {
  std::vector<size_t> peaks;
  for (size_t begin = 0; begin < errors.size(); begin += block) {
    const auto first = errors.begin() + static_cast<ptrdiff_t>(begin);
    const auto last = errors.begin() + static_cast<ptrdiff_t>(std::min(begin + block, errors.size()));
    peaks.push_back(static_cast<size_t>(std::max_element(first, last) - errors.begin()));
  }
  return peaks;
}

double MostAround(const std::vector<double> &errors, const std::vector<size_t> &peaks, size_t place) {
  double most = 0.0;
  const size_t first = place > kAround ? place - kAround : 0;
  const size_t last = std::min(place + kAround, peaks.size() - 1);
  for (size_t i = first; i <= last; ++i) {
    const size_t distance = i > place ? i - place : place - i;
    if (distance > kSkipped) most = std::max(most, errors[peaks[i]]);
  }
  return most;
}

}  // namespace

Flaws FindClicks(const Signal &signal) {
  Flaws flaws;
  const size_t block = std::max(signal.Count(kBlock), kOrder + 8);
  if (signal.IsConstant() || signal.samples.size() < 2 * kAround * block) return flaws;
  const std::vector<double> errors = Errors(signal);
  const std::vector<size_t> peaks = Peaks(errors, block);
  for (size_t i = 0; i < peaks.size(); ++i) {
    const double size = errors[peaks[i]];
    if (size < kLeastSteps || size < kTimesAround * MostAround(errors, peaks, i)) continue;
    if (!flaws.empty() && peaks[i] - flaws.back().begin < 2 * block) continue;
    flaws.push_back({peaks[i], peaks[i] + 1, "click", ToDb(size * signal.step / kFullScale), "dBFS"});
  }
  return flaws;
}

}  // namespace kest::ctl
