// SPDX-License-Identifier: Apache-2.0
#include "player/check/tour.h"

#include "player/check/stream.h"

namespace kest::player {
namespace {

// The output fills up while the input does, and then has room for more than a turn may move.
void FillUp(Rig &rig, const Samples &in, Stream &stream) {
  for (int turns = 0; turns < 6; ++turns) {
    ze_kest_Harness_Fill(rig.Get(), in.data(), 256);
    rig.Turn(false);
  }
  TakeAll(rig, stream);
}

}  // namespace

// Rings of odd lengths, so that pieces of 256 wrap everywhere.
std::string FaultsOfTour(const Subject &subject, uint32_t mask, uint32_t guard) {
  constexpr uint32_t kFrames = 1500;
  for (Shape shape : SomeShapes(subject)) {
    shape.inputSamples = 307;
    shape.outputSamples = 283;
    shape.metadataBlocks = 8;
    shape.guard = guard;
    for (const uint32_t amount : {1u, 10u, 17u, 255u, 256u, 0u}) {
      const auto rig = MakeRig(subject, shape);
      Stream stream;
      const Samples in = QuietNoise(*rig, kFrames, subject.seed);
      Feed(*rig, in, {amount, subject.seed}, stream);
      FillUp(*rig, in, stream);
      End(*rig, stream);
      std::string faults = rig->FaultsOf(mask);
      if (!faults.empty()) return faults;
    }
  }
  return "";
}

Finding JudgeTour(const Subject &subject, uint32_t mask) {
  std::string faults = FaultsOfTour(subject, mask, ZE_KEST_HARNESS_GUARD_FAR);
  return faults.empty() ? Success() : Failed(std::move(faults));
}

}  // namespace kest::player
