// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/checks.h"

#include <algorithm>
#include <cmath>

#include "ctl/audio/clicks.h"
#include "ctl/audio/flat_runs.h"
#include "ctl/audio/repeats.h"

namespace kest::ctl {
namespace {

constexpr double kSameFlaw = 0.005;  // seconds

void Add(Flaws &flaws, const Flaws &more) {
  flaws.insert(flaws.end(), more.begin(), more.end());
}

// What one check names well, the rougher ones see too: these come after it and are dropped beside it.
Flaws FlawsOf(const Signal &signal, const std::optional<Sine> &sine) {
  const size_t distance = signal.Count(kSameFlaw);
  Flaws flaws = FindClipping(signal);
  Flaws gaps = FindGaps(signal);
  DropNear(gaps, flaws, 0);
  Add(flaws, gaps);
  if (!sine) {
    Flaws repeats = FindRepeats(signal);
    DropNear(repeats, flaws, 0);
    Add(flaws, repeats);
  } else {
    Flaws jumps = FindPhaseJumps(signal, *sine);
    DropNear(jumps, flaws, distance);
    Add(flaws, jumps);
  }
  Flaws clicks = FindClicks(signal);
  DropNear(clicks, flaws, distance);
  Add(flaws, clicks);
  Add(flaws, FindOffset(signal));
  return flaws;
}

double PeakOf(const Signal &signal) {
  return std::max(std::abs(static_cast<double>(signal.least)), std::abs(static_cast<double>(signal.most))) /
         kFullScale;
}

}  // namespace

ChannelReport CheckChannel(const Signal &signal, std::optional<double> leastSnrDb) {
  ChannelReport report;
  const size_t count = signal.samples.size();
  const Loudness loudness = LoudnessOf(signal, {0, count});
  report.peak = PeakOf(signal);
  report.rms = loudness.rms / kFullScale;
  report.offset = loudness.mean / kFullScale;
  if (signal.IsConstant()) {
    report.flaws.push_back({0, count, "silence", signal.Seconds(count) * 1000.0, "ms"});
    return report;
  }
  report.sine = FindSine(signal);
  report.flaws = FlawsOf(signal, report.sine);
  if (report.sine && leastSnrDb && report.sine->snrDb < *leastSnrDb)
    report.flaws.push_back({0, count, "noise", report.sine->snrDb, "dB SNR"});
  std::sort(report.flaws.begin(), report.flaws.end(),
            [](const Flaw &one, const Flaw &other) { return one.begin < other.begin; });
  return report;
}

}  // namespace kest::ctl
