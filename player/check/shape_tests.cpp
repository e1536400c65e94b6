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

enum class Way { kStraight, kWrapped, kSplit };

void Pass(Rig &rig, const int32_t *in, uint32_t frames, Stream &stream) {
  ze_kest_Harness_Fill(rig.Get(), in, frames);
  for (int turns = 0; turns < 3; ++turns) {
    rig.Turn(false);
    TakeAll(rig, stream);
  }
}

// Every level at every place of a short ring, one after the other; straight, from the ring's first sample on;
// split, from there too but in two parts, cut where the ring would end.
Samples Wander(const Subject &subject, Shape shape, Way way) {
  shape.maxSamples = kShortRing;
  shape.inputSamples = kShortRing;
  shape.outputSamples = kShortRing;
  const auto rig = MakeRig(subject, shape);
  Stream stream;
  for (uint32_t place = 0; place < kShortRing; ++place) {
    const uint32_t begin = way == Way::kWrapped ? place : 0;
    for (uint32_t level = 1; level <= kShortRing; ++level) {
      const Samples in = QuietNoise(*rig, level, subject.seed + place * kShortRing + level);
      const uint32_t first = way == Way::kSplit ? std::min(level, kShortRing - place) : level;
      ze_kest_Harness_Place(rig->Get(), begin, begin * 7);
      Pass(*rig, in.data(), first, stream);
      if (first == level) continue;
      ze_kest_Harness_Place(rig->Get(), 0, 0);
      Pass(*rig, in.data() + size_t{first} * shape.channels, level - first, stream);
    }
  }
  return stream.out;
}

// A filter that takes only what lies in one piece splits at the ring's end.
Finding Wraps(const Subject &subject) {
  const bool mayDiffer = subject.Has(ZE_KEST_MODULE_MAY_DIFFER);
  for (const Shape &shape : SomeShapes(subject)) {
    const Samples straight = Wander(subject, shape, Way::kStraight);
    const std::string difference =
        Difference(straight, Wander(subject, shape, Way::kWrapped), shape.channels);
    if (difference.empty() || mayDiffer) continue;
    if (straight != Wander(subject, shape, Way::kSplit)) {
      return Skipped("its samples depend on the splits; see Result.Splits");
    }
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
