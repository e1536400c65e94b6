// SPDX-License-Identifier: Apache-2.0
// Formats, amounts and places of the data.
#include <algorithm>
#include <initializer_list>

#include "player/check/check_test.h"
#include "player/check/stream.h"

namespace kest::player {
namespace {

constexpr uint32_t kFrames = 2000;

std::string TryFormat(const Subject &subject, const Shape &shape) {
  Rig rig(subject, shape);
  const uint32_t result = rig.TryCreate();
  if (result != ZE_KEST_OK) {
    // A configuration may need a certain number of channels.
    if (!subject.config.empty() && !rig.Error().empty()) return "";
    return "it cannot be created: " +
           (rig.Error().empty() ? "result " + std::to_string(result) : rig.Error());
  }
  Stream stream;
  Feed(rig, QuietNoise(rig, kFrames, subject.seed), {256, 0}, stream);
  End(rig, stream);
  return stream.stall;
}

Finding Formats(const Subject &subject) {
  const ZE_KEST_ModuleFilter_s filter = subject.Load().record;
  for (uint32_t channels = filter.u32LeastChannels; channels <= filter.u32MostChannels; ++channels) {
    for (const uint32_t bits : {16u, 32u}) {
      const uint32_t width = bits == 16 ? ZE_KEST_MODULE_16_BITS : ZE_KEST_MODULE_32_BITS;
      if ((filter.u32Widths & width) == 0) continue;
      const Shape shape = {channels, bits};
      const std::string fault = TryFormat(subject, shape);
      if (!fault.empty()) return Failed(TextOf(shape) + ": " + fault);
    }
  }
  return Success();
}

Finding Amounts(const Subject &subject) {
  for (const Shape &shape : SomeShapes(subject)) {
    for (const uint32_t amount : {1u, 10u, 17u, 255u, 256u, 0u}) {
      const auto rig = MakeRig(subject, shape);
      Stream stream;
      Feed(*rig, QuietNoise(*rig, kFrames, subject.seed), {amount, subject.seed}, stream);
      End(*rig, stream);
      const std::string amounts =
          amount == 0 ? "random amounts" : std::to_string(amount) + " samples in a turn";
      if (!stream.stall.empty()) return Failed(TextOf(shape) + ", " + amounts + ": " + stream.stall);
    }
  }
  return Success();
}

constexpr uint32_t kShortRing = 24;

// Every level at every place of a short ring, one after the other. placed: false to begin at 0 always.
Samples Wander(const Subject &subject, Shape shape, bool placed) {
  shape.maxSamples = kShortRing;
  shape.inputSamples = kShortRing;
  shape.outputSamples = kShortRing;
  const auto rig = MakeRig(subject, shape);
  Stream stream;
  for (uint32_t place = 0; place < kShortRing; ++place) {
    for (uint32_t level = 1; level <= kShortRing; ++level) {
      ze_kest_Harness_Place(rig->Get(), placed ? place : 0, placed ? place * 7 : 0);
      const Samples in = QuietNoise(*rig, level, subject.seed + place * kShortRing + level);
      ze_kest_Harness_Fill(rig->Get(), in.data(), level);
      for (int turns = 0; turns < 3; ++turns) {
        rig->Turn(false);
        TakeAll(*rig, stream);
      }
    }
  }
  return stream.out;
}

// A filter that takes only what lies in one piece splits at the ring's end.
bool DependsOnSplits(const Subject &subject, const Shape &shape) {
  const Rig ports(subject, shape);
  const Samples in = QuietNoise(ports, shape.inputSamples, subject.seed);  // as many as need no wrap
  return !Difference(Run(subject, shape, in, {kShortRing, 0}).out, Run(subject, shape, in, {7, 0}).out,
                     shape.channels)
              .empty();
}

Finding Wraps(const Subject &subject) {
  const bool mayDiffer = subject.Has(ZE_KEST_MODULE_MAY_DIFFER);
  for (const Shape &shape : SomeShapes(subject)) {
    const Samples straight = Wander(subject, shape, false);
    const std::string difference = Difference(straight, Wander(subject, shape, true), shape.channels);
    if (difference.empty() || mayDiffer) continue;
    if (DependsOnSplits(subject, shape))
      return Skipped("its samples depend on the splits; see Result.Splits");
    return Failed(TextOf(shape) + ", without and with a wrap: " + difference);
  }
  return Success();
}

constexpr CheckTest kTests[] = {
    {"Shapes.Formats", "every width and number of channels that it declares passes through", Formats},
    {"Shapes.Amounts", "turns over 1, 10, 17, 255, 256 and random numbers of samples all pass through",
     Amounts},
    {"Shapes.Wraps", "the samples do not depend on where in the rings they lie", Wraps},
};

}  // namespace

const Table<CheckTest> kShapeTests = kTests;

}  // namespace kest::player
