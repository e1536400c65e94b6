// SPDX-License-Identifier: Apache-2.0
#include "player/check/stream.h"

#include <algorithm>

namespace kest::player {
namespace {

// As many turns without any movement, although there is something to move, are the end of a run.
constexpr uint32_t kMostIdleTurns = 1000;
// What a filter may still write after its end: a minute at the highest rate.
constexpr uint64_t kMostSamplesAfterEnd = uint64_t{60} * 192000;

// Blocks that find no room come with the next samples.
void FeedMetadata(Rig &rig, Stream &stream) {
  while (stream.blocksFed * ZE_KEST_METADATA_SAMPLES < stream.fed &&
         ze_kest_Harness_FillMetadata(rig.Get(), stream.blocksFed) == ZE_KEST_OK) {
    ++stream.blocksFed;
  }
}

void TakeMetadata(Rig &rig, Stream &stream) {
  uint64_t number = 0;
  for (;;) {
    const uint32_t result = ze_kest_Harness_TakeMetadata(rig.Get(), &number);
    if (result == ZE_KEST_NOTHING_TO_PROCESS) return;
    stream.blocks.push_back({number, result == ZE_KEST_OK});
  }
}

}  // namespace

uint32_t Splits::Next() {
  if (samples_ > 0) return samples_;
  int32_t random = 0;
  ze_kest_Harness_Noise(&random, 1, 32, &seed_);
  return 1 + static_cast<uint32_t>(random) % most_;
}

Samples Noise(const Rig &rig, uint32_t frames, uint32_t seed) {
  Samples samples(size_t{frames} * rig.Channels());
  const uint32_t bits = ze_kest_Harness_Filter(rig.Get())->apstInPort[0]->stPcm.stPcmInfo.u32BitWidth;
  ze_kest_Harness_Noise(samples.data(), static_cast<uint32_t>(samples.size()), bits, &seed);
  return samples;
}

Samples QuietNoise(const Rig &rig, uint32_t frames, uint32_t seed) {
  Samples samples = Noise(rig, frames, seed);
  std::transform(samples.begin(), samples.end(), samples.begin(), [](int32_t sample) { return sample / 4; });
  return samples;
}

void TakeAll(Rig &rig, Stream &stream) {
  TakeMetadata(rig, stream);
  const uint32_t held = ze_kest_Harness_Held(rig.Get());
  const size_t before = stream.out.size();
  stream.out.resize(before + size_t{held} * rig.Channels());
  ze_kest_Harness_Take(rig.Get(), stream.out.data() + before, held);
}

void Feed(Rig &rig, const Samples &in, Splits splits, Stream &stream) {
  const auto frames = static_cast<uint32_t>(in.size() / rig.Channels());
  uint32_t fed = 0;
  for (uint32_t idle = 0; fed < frames;) {
    const uint32_t wanted = std::min(splits.Next(), frames - fed);
    const uint32_t taken = ze_kest_Harness_Fill(rig.Get(), in.data() + size_t{fed} * rig.Channels(), wanted);
    fed += taken;
    stream.fed += taken;
    FeedMetadata(rig, stream);
    const ZE_KEST_HarnessTurn_s turn = rig.Turn(false);
    stream.read += turn.u32Read;
    stream.written += turn.u32Written;
    TakeAll(rig, stream);
    const bool isDue = ze_kest_Harness_Room(rig.Get()) == 0;
    idle = isDue && turn.u32Read == 0 && turn.u32Written == 0 ? idle + 1 : 0;
    if (idle < kMostIdleTurns) continue;
    stream.stall = "it stands still: " + std::to_string(kMostIdleTurns) +
                   " turns moved nothing, with a full input and an empty output";
    return;
  }
}

void End(Rig &rig, Stream &stream) {
  if (!stream.stall.empty()) return;
  const ZE_KEST_PcmBuffer_s &input = ze_kest_Harness_Filter(rig.Get())->apstInPort[0]->stPcm;
  uint64_t after = 0;
  ZE_KEST_HarnessTurn_s turn{};
  for (uint32_t idle = 0; idle < kMostIdleTurns && after <= kMostSamplesAfterEnd;) {
    turn = rig.Turn(true);
    stream.read += turn.u32Read;
    stream.written += turn.u32Written;
    after += turn.u32Written;
    TakeAll(rig, stream);
    if (input.sztPcmLevel == 0 && turn.u32Pending == 0) return;
    idle = turn.u32Read == 0 && turn.u32Written == 0 ? idle + 1 : 0;
  }
  stream.stall = "it does not come to its end: it wrote " + std::to_string(after) + " samples, and then " +
                 std::to_string(kMostIdleTurns) + " turns moved nothing, with " +
                 std::to_string(input.sztPcmLevel) + " samples in its input and " +
                 std::to_string(turn.u32Pending) + " pending";
}

Stream Run(const Subject &subject, const Shape &shape, const Samples &in, Splits splits) {
  const auto rig = MakeRig(subject, shape);
  Stream stream;
  Feed(*rig, in, splits, stream);
  End(*rig, stream);
  return stream;
}

std::string Difference(const Samples &a, const Samples &b, uint32_t channels) {
  const size_t common = std::min(a.size(), b.size());
  const size_t at = ze_kest_Harness_Compare(a.data(), b.data(), static_cast<uint32_t>(common), 0);
  if (at < common) {
    return "sample " + std::to_string(at / channels) + " of channel " + std::to_string(at % channels) +
           " is " + std::to_string(a[at]) + ", then " + std::to_string(b[at]);
  }
  if (a.size() == b.size()) return "";
  return std::to_string(a.size() / channels) + " samples come out, then " +
         std::to_string(b.size() / channels);
}

}  // namespace kest::player
