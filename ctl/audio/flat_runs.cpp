// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/flat_runs.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kest::ctl {
namespace {

constexpr size_t kClippedRun = 3;      // at full scale
constexpr size_t kFlatRun = 4;         // below it
constexpr double kClippedSteps = 8.0;  // from the top to what is beside it: the top of a low tone is flat too
constexpr double kFlatSteps = 16.0;
constexpr double kClippingTogether = 0.1;  // seconds

constexpr double kGap = 0.001;     // seconds without sound
constexpr double kHeld = 0.004;    // seconds of another sample
constexpr double kSilence = 0.5;   // seconds from which a gap is silence
constexpr double kBeside = 0.005;  // seconds on both sides that must be loud
constexpr double kLoudSteps = 16.0;
constexpr double kLoudPart = 0.02;  // of the loudness of the whole

constexpr double kOffsetPart = 0.1;   // of the loudness
constexpr double kOffsetSteps = 2.0;  // rounding shifts attenuated sound
constexpr size_t kOffsetParts = 4;    // of the recording, each of which must have it

double Difference(int32_t one, int32_t other) {
  return std::abs(static_cast<double>(one) - static_cast<double>(other));
}

template <typename Take>
void ForEachRun(const Signal &signal, size_t least, Take &&take) {
  const Samples &samples = signal.samples;
  for (size_t begin = 0; begin < samples.size();) {
    size_t end = begin + 1;
    while (end < samples.size() && samples[end] == samples[begin])
      ++end;
    if (end - begin >= least) take(Span{begin, end});
    begin = end;
  }
}

// How far the sound leaves the run's value on the steeper side, in steps.
double StepsBeside(const Signal &signal, Span run) {
  const int32_t value = signal.samples[run.begin];
  double most = 0.0;
  if (run.begin > 0) most = Difference(signal.samples[run.begin - 1], value);
  if (run.end < signal.samples.size()) most = std::max(most, Difference(signal.samples[run.end], value));
  return most / signal.step;
}

bool IsFullScale(const Signal &signal, int32_t value) {
  return Difference(value, 0) >= kFullScale - 2.0 * signal.step;
}

bool IsClipped(const Signal &signal, Span run) {
  const int32_t value = signal.samples[run.begin];
  if (value == 0 || (value != signal.least && value != signal.most)) return false;
  if (IsFullScale(signal, value)) return StepsBeside(signal, run) >= kClippedSteps;
  return run.end - run.begin >= kFlatRun && StepsBeside(signal, run) >= kFlatSteps;
}

bool IsLoud(const Signal &signal, Span span, double wholeRms) {
  const double rms = LoudnessOf(signal, span).rms;
  return rms >= kLoudSteps * signal.step && rms >= kLoudPart * wholeRms;
}

bool IsBetweenLoud(const Signal &signal, Span run, double wholeRms) {
  const size_t beside = signal.Count(kBeside);
  if (run.begin < beside || run.end + beside > signal.samples.size()) return false;
  return IsLoud(signal, {run.begin - beside, run.begin}, wholeRms) &&
         IsLoud(signal, {run.end, run.end + beside}, wholeRms);
}

}  // namespace

Flaws FindClipping(const Signal &signal) {
  Flaws flaws;
  size_t runs = 0;
  ForEachRun(signal, kClippedRun, [&](Span run) {
    if (!IsClipped(signal, run)) return;
    ++runs;
    const auto samples = static_cast<double>(run.end - run.begin);
    if (!flaws.empty() && run.begin - flaws.back().end < signal.Count(kClippingTogether)) {
      flaws.back().end = run.end;
      flaws.back().value += samples;
    } else {
      flaws.push_back({run.begin, run.end, "clipping", samples, "samples"});
    }
  });
  const bool isAccident = runs == 1 && !IsFullScale(signal, signal.samples[flaws[0].begin]);
  return isAccident ? Flaws() : flaws;
}

Flaws FindGaps(const Signal &signal) {
  Flaws flaws;
  if (signal.IsConstant()) return flaws;
  const double wholeRms = LoudnessOf(signal, {0, signal.samples.size()}).rms;
  ForEachRun(signal, std::max<size_t>(signal.Count(kGap), 2), [&](Span run) {
    const bool isHeld = signal.samples[run.begin] != 0;
    const double seconds = signal.Seconds(run.end - run.begin);
    if ((isHeld && seconds < kHeld) || !IsBetweenLoud(signal, run, wholeRms)) return;
    const char *kind = seconds < kSilence ? "gap" : "silence";
    flaws.push_back({run.begin, run.end, kind, seconds * 1000.0, "ms"});
  });
  return flaws;
}

Flaws FindOffset(const Signal &signal) {
  const size_t count = signal.samples.size();
  const Loudness whole = LoudnessOf(signal, {0, count});
  const double least = std::max(kOffsetPart * whole.rms, kOffsetSteps * signal.step);
  if (signal.IsConstant() || std::abs(whole.mean) < least) return {};
  for (size_t i = 0; i < kOffsetParts; ++i) {
    const Loudness part = LoudnessOf(signal, {count * i / kOffsetParts, count * (i + 1) / kOffsetParts});
    if (part.mean * whole.mean < 0.0 || std::abs(part.mean) < least / 2.0) return {};
  }
  return {{0, count, "dc", whole.mean / kFullScale, "of full scale"}};
}

}  // namespace kest::ctl
