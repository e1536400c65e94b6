// SPDX-License-Identifier: Apache-2.0
// Too little, too much, and the end.
#include <algorithm>

#include "player/check/check_test.h"
#include "player/check/stream.h"

namespace kest::player {
namespace {

constexpr uint32_t kFrames = 3000;
constexpr uint32_t kIdleTurns = 50;

// A rig in the usual shape, a stream through it, and the same stream as a plain host would run it.
struct Trial {
  Trial(const Subject &subject, const Shape &shape)
      : rig(MakeRig(subject, shape)),
        in(QuietNoise(*rig, kFrames, subject.seed)),
        plain(Run(subject, UsualShape(subject), in, {256, 0})) {}
  explicit Trial(const Subject &subject) : Trial(subject, UsualShape(subject)) {}

  // Nothing is fed, and what comes out is taken.
  void EmptyTurns(uint32_t turns) {
    for (uint32_t i = 0; i < turns; ++i) {
      rig->Turn(false);
      TakeAll(*rig, stream);
    }
  }

  // Nothing is taken.
  void BlockedTurns() {
    for (uint32_t i = 0; i < kIdleTurns; ++i) {
      const ZE_KEST_HarnessTurn_s turn = rig->Turn(false);
      stream.written += turn.u32Written;
      stream.read += turn.u32Read;
    }
  }

  // sameSplits: the samples are compared too, not only their number.
  [[nodiscard]] Finding Judge(bool sameSplits) const {
    if (!plain.stall.empty()) return Skipped("a plain stream does not come to its end; see Shapes.Formats");
    if (!stream.stall.empty()) return Failed(stream.stall);
    if (sameSplits && !rig->MayDiffer()) {
      const std::string difference = Difference(plain.out, stream.out, rig->Channels());
      return difference.empty() ? Success()
                                : Failed("without and with it, other samples come out: " + difference);
    }
    if (stream.out.size() == plain.out.size()) return Success();
    return Failed(std::to_string(stream.out.size() / rig->Channels()) + " samples come out, without it " +
                  std::to_string(plain.out.size() / rig->Channels()));
  }

  std::unique_ptr<Rig> rig;
  Samples in;
  Stream plain;
  Stream stream;
};

Finding EmptyInput(const Subject &subject) {
  Trial trial(subject);
  trial.EmptyTurns(kIdleTurns);
  Feed(*trial.rig, trial.in, {256, 0}, trial.stream);
  End(*trial.rig, trial.stream);
  return trial.Judge(true);
}

Finding Starved(const Subject &subject) {
  constexpr uint32_t kPiece = 256;
  Trial trial(subject);
  const size_t piece = size_t{kPiece} * trial.rig->Channels();
  for (size_t begin = 0; begin < trial.in.size(); begin += piece) {
    const size_t end = std::min(trial.in.size(), begin + piece);
    const auto at = [&](size_t offset) { return trial.in.begin() + static_cast<ptrdiff_t>(offset); };
    Feed(*trial.rig, Samples(at(begin), at(end)), {kPiece, 0}, trial.stream);
    trial.EmptyTurns(3);
  }
  End(*trial.rig, trial.stream);
  return trial.Judge(true);
}

Finding FullOutput(const Subject &subject) {
  Shape shape = UsualShape(subject);
  shape.outputSamples = 300;
  Trial trial(subject, shape);
  const uint32_t fed = ze_kest_Harness_Fill(trial.rig->Get(), trial.in.data(), kFrames);
  trial.BlockedTurns();
  TakeAll(*trial.rig, trial.stream);
  const auto rest = trial.in.begin() + static_cast<ptrdiff_t>(size_t{fed} * trial.rig->Channels());
  Feed(*trial.rig, Samples(rest, trial.in.end()), {256, 0}, trial.stream);
  End(*trial.rig, trial.stream);
  return trial.Judge(false);
}

Finding RoomForOne(const Subject &subject) {
  Shape shape = UsualShape(subject);
  shape.outputSamples = 1;
  Trial trial(subject, shape);
  Feed(*trial.rig, trial.in, {256, 0}, trial.stream);
  End(*trial.rig, trial.stream);
  return trial.Judge(false);
}

Finding Disconnected(const Subject &subject) {
  Trial trial(subject);
  ze_kest_Harness_Filter(trial.rig->Get())->apstOutPort[0]->bConnected = 0;
  Feed(*trial.rig, trial.in, {256, 0}, trial.stream);
  ze_kest_Harness_Filter(trial.rig->Get())->apstOutPort[0]->bConnected = 1;
  return Success();
}

Finding TheEnd(const Subject &subject) {
  const Shape shape = UsualShape(subject);
  for (const uint32_t before : {0u, 1000u}) {
    for (const uint32_t left : {0u, 1u, 256u}) {
      const auto rig = MakeRig(subject, shape);
      Stream stream;
      Feed(*rig, QuietNoise(*rig, before, subject.seed), {256, 0}, stream);
      ze_kest_Harness_Fill(rig->Get(), nullptr, left);
      End(*rig, stream);
      if (!stream.stall.empty()) {
        return Failed("after " + std::to_string(before) + " samples, with " + std::to_string(left) +
                      " left at the end: " + stream.stall);
      }
    }
  }
  return Success();
}

constexpr CheckTest kTests[] = {
    {"Supply.EmptyInput", "turns with an empty input change nothing of what comes out later", EmptyInput},
    {"Supply.Starved", "an input that runs empty between the turns changes nothing of what comes out",
     Starved},
    {"Supply.FullOutput", "an output that stays full for a while loses nothing", FullOutput},
    {"Supply.RoomForOne", "an output with room for one sample is enough", RoomForOne},
    {"Supply.Disconnected", "a disconnected output does no harm", Disconnected},
    {"Supply.End", "after the end it reads what is left, and its pending samples fall to 0", TheEnd},
};

}  // namespace

const Table<CheckTest> kSupplyTests = kTests;

}  // namespace kest::player
