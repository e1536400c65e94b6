// SPDX-License-Identifier: Apache-2.0
// What a turn may touch.
#include "player/check/check_test.h"
#include "player/check/stream.h"
#include "player/check/tour.h"

namespace kest::player {
namespace {

Finding GuardPages(const Subject &subject) {
  for (const uint32_t guard : {ZE_KEST_HARNESS_GUARD_BEHIND, ZE_KEST_HARNESS_GUARD_BEFORE}) {
    static_cast<void>(FaultsOfTour(subject, 0, guard));
  }
  return Success();
}

Finding Input(const Subject &subject) {
  return JudgeTour(subject, ZE_KEST_HARNESS_CHANGED_INPUT);
}

Finding Records(const Subject &subject) {
  return JudgeTour(subject, ZE_KEST_HARNESS_CHANGED_RECORD);
}

Finding Output(const Subject &subject) {
  return JudgeTour(subject, ZE_KEST_HARNESS_CHANGED_OUTPUT);
}

// The samples of two runs over the same input whose unheld bytes differ.
struct TwoMarkers {
  Samples a;
  Samples b;
};

constexpr uint8_t kMarkerA = 0xA5;
constexpr uint8_t kMarkerB = 0x3C;

TwoMarkers RunWithBoth(const Subject &subject, Shape shape) {
  shape.inputSamples = 300;
  shape.outputSamples = 300;
  const Rig ports(subject, shape);
  const Samples in = QuietNoise(ports, 2000, subject.seed);
  shape.marker = kMarkerA;
  Samples a = Run(subject, shape, in, {70, 0}).out;
  shape.marker = kMarkerB;
  return {std::move(a), Run(subject, shape, in, {70, 0}).out};
}

int32_t SampleOf(uint8_t marker, uint32_t bits) {
  const uint32_t word = marker * 0x01010101u;
  return bits == 16 ? static_cast<int16_t>(word) : static_cast<int32_t>(word);
}

Finding Unwritten(const Subject &subject) {
  if (Finding finding = JudgeTour(subject, ZE_KEST_HARNESS_UNWRITTEN); finding.verdict != Verdict::kSuccess) {
    return finding;
  }
  for (const Shape &shape : SomeShapes(subject)) {
    const TwoMarkers runs = RunWithBoth(subject, shape);
    for (size_t i = 0; i < runs.a.size() && i < runs.b.size(); ++i) {
      if (runs.a[i] != SampleOf(kMarkerA, shape.bits) || runs.b[i] != SampleOf(kMarkerB, shape.bits))
        continue;
      return Failed(TextOf(shape) + ": sample " + std::to_string(i / shape.channels) + " of channel " +
                    std::to_string(i % shape.channels) + " was accounted for and not written");
    }
  }
  return Success();
}

Finding UnheldBytes(const Subject &subject) {
  if (subject.Has(ZE_KEST_MODULE_MAY_DIFFER)) return Skipped("two runs of it may differ");
  for (const Shape &shape : SomeShapes(subject)) {
    const TwoMarkers runs = RunWithBoth(subject, shape);
    for (size_t i = 0; i < runs.a.size() && i < runs.b.size(); ++i) {
      const bool isUnwritten =
          runs.a[i] == SampleOf(kMarkerA, shape.bits) && runs.b[i] == SampleOf(kMarkerB, shape.bits);
      if (runs.a[i] == runs.b[i] || isUnwritten) continue;
      return Failed(TextOf(shape) + ": with other bytes where the rings hold no data, " +
                    Difference(runs.a, runs.b, shape.channels));
    }
  }
  return Success();
}

constexpr CheckTest kTests[] = {
    {"Bounds.GuardPages", "no access beside the rings", GuardPages},
    {"Bounds.Input", "what lies in the input's rings stays unchanged", Input},
    {"Bounds.Records", "of the records it changes only what the Update functions change", Records},
    {"Bounds.Output", "in the output's rings it changes only what it accounts for", Output},
    {"Bounds.Unwritten", "every sample that it accounts for has been written", Unwritten},
    {"Bounds.UnheldBytes", "what the rings hold beside the data does not matter", UnheldBytes},
};

}  // namespace

const Table<CheckTest> kBoundsTests = kTests;

}  // namespace kest::player
