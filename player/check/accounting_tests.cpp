// SPDX-License-Identifier: Apache-2.0
// Whether the numbers agree: samples read and written, latency, what is pending.
#include <algorithm>
#include <cstdlib>
#include <optional>

#include "player/check/check_test.h"
#include "player/check/stream.h"
#include "player/check/tour.h"

namespace kest::player {
namespace {

Finding Read(const Subject &subject) {
  return JudgeTour(subject, ZE_KEST_HARNESS_READ_TOO_MUCH);
}

Finding Written(const Subject &subject) {
  return JudgeTour(subject, ZE_KEST_HARNESS_WROTE_TOO_MUCH);
}

Finding MaxSamples(const Subject &subject) {
  return JudgeTour(subject, ZE_KEST_HARNESS_MOVED_TOO_MUCH);
}

Finding Total(const Subject &subject) {
  const auto rig = MakeRig(subject, UsualShape(subject));
  constexpr uint32_t kFrames = 5000;
  Stream stream;
  Feed(*rig, QuietNoise(*rig, kFrames, subject.seed), {0, subject.seed}, stream);
  End(*rig, stream);
  if (!stream.stall.empty()) return Skipped("it does not come to its end; see Supply.End");
  if (stream.written >= stream.read + rig->Latency()) return Success();
  return Failed("of " + std::to_string(stream.read) + " samples read and a latency of " +
                std::to_string(rig->Latency()) + ", " + std::to_string(stream.written) + " came out");
}

// The output is so short that what is pending needs several turns.
Finding Pending(const Subject &subject) {
  Shape shape = UsualShape(subject);
  shape.outputSamples = 4;
  const auto rig = MakeRig(subject, shape);
  Stream stream;
  Feed(*rig, QuietNoise(*rig, 1000, subject.seed), {256, 0}, stream);
  const ZE_KEST_PcmBuffer_s &input = ze_kest_Harness_Filter(rig->Get())->apstInPort[0]->stPcm;
  ZE_KEST_HarnessTurn_s turn = rig->Turn(true);
  TakeAll(*rig, stream);
  for (int i = 0; input.sztPcmLevel > 0 && i < 2000; ++i) {
    turn = rig->Turn(true);
    TakeAll(*rig, stream);
  }
  Stream rest;
  if (turn.u32Pending > 0) End(*rig, rest);
  if (input.sztPcmLevel > 0 || !rest.stall.empty())
    return Skipped("it does not come to its end; see Supply.End");
  uint64_t late = rest.written;
  for (int i = 0; i < 10; ++i) {
    late += rig->Turn(true).u32Written;
    TakeAll(*rig, rest);
  }
  if (late == turn.u32Pending) return Success();
  return Failed("with an empty input " + std::to_string(turn.u32Pending) + " samples were pending, and " +
                std::to_string(late) + " came");
}

struct Range {
  int64_t least = INT64_MAX;
  int64_t most = INT64_MIN;

  void Add(int64_t value) {
    least = std::min(least, value);
    most = std::max(most, value);
  }
};

// How far the output is behind the input, in the first quarter of a million samples and in the last.
Finding Drift(const Subject &subject) {
  constexpr uint32_t kFrames = 1u << 20;
  constexpr uint32_t kPiece = 256;
  Shape shape = UsualShape(subject);
  const auto rig = MakeRig(subject, shape);
  const Samples in = QuietNoise(*rig, kPiece, subject.seed);
  Stream stream;
  Range first;
  Range last;
  for (uint32_t fed = 0; fed < kFrames && stream.stall.empty(); fed += kPiece) {
    stream.out.clear();
    Feed(*rig, in, {kPiece, 0}, stream);
    const int64_t behind = static_cast<int64_t>(stream.read) - static_cast<int64_t>(stream.written);
    if (fed < kFrames / 4) first.Add(behind);
    if (fed >= kFrames / 4 * 3) last.Add(behind);
  }
  if (!stream.stall.empty()) return Failed(stream.stall);
  if (last.least <= first.most && last.most >= first.least) return Success();
  return Failed("in the first quarter of a million samples the output was at most " +
                std::to_string(first.most) + " samples behind, in the last quarter " +
                std::to_string(last.most));
}

// What an impulse in silence changes.
struct Response {
  size_t first;
  size_t peak;
};

std::optional<Response> ImpulseResponse(const Subject &subject, const Shape &shape, uint32_t position) {
  const Rig ports(subject, shape);
  constexpr uint32_t kFrames = 100000;
  Samples in(size_t{kFrames} * ports.Channels());
  const Samples silent = Run(subject, shape, in, {256, 0}).out;
  std::fill_n(in.begin() + static_cast<ptrdiff_t>(size_t{position} * ports.Channels()), ports.Channels(),
              shape.bits == 16 ? INT16_MAX / 2 : INT32_MAX / 2);
  const Samples struck = Run(subject, shape, in, {256, 0}).out;
  std::optional<Response> response;
  int64_t most = 0;
  for (size_t i = 0; i < struck.size() && i < silent.size(); ++i) {
    const int64_t change = std::abs(int64_t{struck[i]} - silent[i]);
    if (change == 0) continue;
    const size_t frame = i / ports.Channels();
    if (!response) response = Response{frame, frame};
    if (change > most) response->peak = frame;
    most = std::max(most, change);
  }
  return response;
}

Finding Impulse(const Subject &subject) {
  constexpr uint32_t kPosition = 1000;
  const Shape shape = UsualShape(subject);
  const auto rig = MakeRig(subject, shape);
  rig->Turn(false);
  if (rig->MayDiffer()) return Skipped("two runs of it may differ");
  const auto response = ImpulseResponse(subject, shape, kPosition);
  if (!response) return Skipped("an impulse changes nothing of its output");
  const size_t due = size_t{kPosition} + rig->Latency();
  if (response->first <= due && due <= response->peak) return Success();
  return Failed("pfnLatency says " + std::to_string(rig->Latency()) +
                " samples; the response to an impulse begins " +
                std::to_string(static_cast<int64_t>(response->first) - kPosition) +
                " samples after it and is highest " +
                std::to_string(static_cast<int64_t>(response->peak) - kPosition) + " samples after it");
}

constexpr CheckTest kTests[] = {
    {"Accounting.Read", "it accounts for at most what the input holds", Read},
    {"Accounting.Written", "it accounts for at most the output's room", Written},
    {"Accounting.MaxSamples", "a turn moves at most u32MaxSamples", MaxSamples},
    {"Accounting.Total", "in the end, all that was read has come out, later by the latency", Total},
    {"Accounting.Pending", "after the end as many samples come as pfnPending says", Pending},
    {"Accounting.Drift", "over a million samples the output does not fall behind or run ahead", Drift},
    {"Accounting.Impulse", "the response to an impulse comes as late as pfnLatency says", Impulse},
};

}  // namespace

const Table<CheckTest> kAccountingTests = kTests;

}  // namespace kest::player
