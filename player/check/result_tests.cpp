// SPDX-License-Identifier: Apache-2.0
// The samples themselves.
#include <algorithm>
#include <cstdlib>

#include "player/check/check_test.h"
#include "player/check/parameters.h"
#include "player/check/stream.h"

namespace kest::player {
namespace {

constexpr uint32_t kFrames = 5000;
constexpr const char *kMayDiffer = "two runs of it may differ";

Finding Repeat(const Subject &subject) {
  if (subject.Has(ZE_KEST_MODULE_MAY_DIFFER)) return Skipped(kMayDiffer);
  for (const Shape &shape : SomeShapes(subject)) {
    const Samples in = QuietNoise(Rig(subject, shape), kFrames, subject.seed);
    const std::string difference = Difference(Run(subject, shape, in, {256, 0}).out,
                                              Run(subject, shape, in, {256, 0}).out, shape.channels);
    if (!difference.empty()) return Failed(TextOf(shape) + ": " + difference);
  }
  return Success();
}

Finding OtherSplits(const Subject &subject) {
  if (subject.Has(ZE_KEST_MODULE_MAY_DIFFER)) return Skipped(kMayDiffer);
  for (const Shape &shape : SomeShapes(subject)) {
    const Samples in = QuietNoise(Rig(subject, shape), kFrames, subject.seed);
    const Samples whole = Run(subject, shape, in, {256, 0}).out;
    for (const uint32_t amount : {1u, 10u, 255u, 0u}) {
      const std::string difference =
          Difference(whole, Run(subject, shape, in, {amount, subject.seed}).out, shape.channels);
      if (difference.empty()) continue;
      return Warning(TextOf(shape) + ", in turns of 256 and of " +
                     (amount == 0 ? "random numbers of" : std::to_string(amount)) +
                     " samples: " + difference);
    }
  }
  return Success();
}

// A stream with one parameter at its most; index: that of none for the defaults.
Samples RunAt(const Subject &subject, const Shape &shape, const Samples &in, size_t index) {
  const auto rig = MakeRig(subject, shape);
  const auto parameters = ParametersOf(*rig);
  if (index < parameters.size() && CanBeSet(parameters[index])) {
    rig->Entries().pfnSet(rig->Self(), static_cast<uint32_t>(index), parameters[index].s32Most);
  }
  Stream stream;
  Feed(*rig, in, {256, 0}, stream);
  End(*rig, stream);
  return stream.out;
}

// Where eight times the output for an eighth of the input is far beyond the range, the output itself has the
// other sign; in words, "" where it has not.
std::string FaultOfLoud(const Subject &subject, const Shape &shape, const Samples &loud, size_t index) {
  constexpr int64_t kRatio = 8;
  const int64_t full = shape.bits == 16 ? INT16_MAX : INT32_MAX;
  Samples quiet = loud;
  std::transform(loud.begin(), loud.end(), quiet.begin(),
                 [](int32_t sample) { return static_cast<int32_t>(sample / kRatio); });
  const Samples loudOut = RunAt(subject, shape, loud, index);
  const Samples quietOut = RunAt(subject, shape, quiet, index);
  for (size_t i = 0; i < loudOut.size() && i < quietOut.size(); ++i) {
    const int64_t due = quietOut[i] * kRatio;
    const bool isBeyond = std::abs(due) > full + full / 8;
    if (!isBeyond || (due < 0) == (loudOut[i] < 0) || loudOut[i] == 0) continue;
    return "sample " + std::to_string(i / shape.channels) + " is " + std::to_string(loudOut[i]) +
           " where about " + std::to_string(due) + " would be due";
  }
  return "";
}

Finding FullScale(const Subject &subject) {
  if (subject.Has(ZE_KEST_MODULE_MAY_DIFFER)) return Skipped(kMayDiffer);
  for (const Shape &shape : SomeShapes(subject)) {
    const auto rig = MakeRig(subject, shape);
    rig->Turn(false);
    const Samples loud = Noise(*rig, 2000, subject.seed);
    const size_t parameters = ParametersOf(*rig).size();
    for (size_t i = 0; i <= parameters; ++i) {
      const size_t index = parameters - i;  // the defaults first
      const std::string fault = FaultOfLoud(subject, shape, loud, index);
      if (!fault.empty()) return Warning(TextOf(shape) + ": " + fault);
    }
  }
  return Success();
}

constexpr CheckTest kTests[] = {
    {"Result.Repeat", "the same input gives the same samples again", Repeat},
    {"Result.Splits", "the samples do not depend on how the input is split into turns", OtherSplits},
    {"Result.FullScale", "what is too loud saturates instead of wrapping around", FullScale},
};

}  // namespace

const Table<CheckTest> kResultTests = kTests;

}  // namespace kest::player
