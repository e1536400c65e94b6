// SPDX-License-Identifier: Apache-2.0
#include "player/filters/mixer.h"

#include <algorithm>

#include "ze_kest/utility.h"

#include "player/filters/filter_material.h"
#include "player/framework/saturate.h"

namespace kest::player {

namespace {

// Holds the sum of as many samples as there are ports. For 16-bit samples not wider than that takes, because
// a vector register holds half as many sums of 64 bits.
template <typename Sample>
using SumOf = std::conditional_t<sizeof(Sample) == sizeof(int16_t), int32_t, int64_t>;

std::unique_ptr<Filter> Make(const FilterLayout & /*layout*/, const FilterMaterial &material) {
  return std::make_unique<Mixer>(material.format);
}

}  // namespace

const FilterKind Mixer::kKind = {"Mixer", FilterPlace::kOutputStart, Make, {}, {}, {}};

void Mixer::Process() {
  const uint32_t frames = FramesToProcess();
  if (frames == 0) return;
  WithSampleType(Format(), [&](auto sample) { MixFrames<decltype(sample)>(frames); });
  ForwardFirstMetadata(frames);
  ReleaseInputs(frames);
}

template <typename Sample>
void Mixer::MixFrames(uint32_t frames) {
  const size_t samples = size_t{frames} * Format().channels;
  SumOf<Sample> *sums = std::get<FrameArray<SumOf<Sample>>>(sums_).data();
  std::fill_n(sums, samples, 0);
  for (uint32_t port = 0; port < Record().u32InPortCount; ++port) {
    if (HasData(port)) AddInput<Sample>(port, frames, sums);
  }
  auto *mixed = buffer_.Samples<Sample>();
  std::transform(sums, sums + samples, mixed, Saturate<Sample, SumOf<Sample>>);
  WriteFrames(mixed, frames);
}

template <typename Sample, typename Sum>
void Mixer::AddInput(uint32_t port, uint32_t frames, Sum *sums) {
  auto *input = buffer_.Samples<Sample>();
  ReadFrames(port, input, frames);
  const size_t samples = size_t{frames} * Format().channels;
  for (size_t i = 0; i < samples; ++i) {
    sums[i] += input[i];
  }
}

// The output carries the metadata of the first input only; that of the others is consumed together with their
// frames.
void Mixer::ForwardFirstMetadata(uint32_t frames) {
  bool forwarded = false;
  for (uint32_t port = 0; port < Record().u32InPortCount; ++port) {
    if (!HasData(port)) continue;
    const uint32_t bytes = MetadataBytes(port, frames);
    if (!forwarded) {
      ze_kest_Utility_WriteAllOutputPortMetadataBuffer(&Record(), port, bytes);
      ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(&Record(), bytes);
      forwarded = true;
    }
    ze_kest_Utility_UpdateSpecificInputPortMetadataReadSize(&Record(), bytes, port);
  }
}

// Limited to the level, because the length query walks the ring without checking that it holds the blocks.
uint32_t Mixer::MetadataBytes(uint32_t port, uint32_t frames) {
  const uint32_t due = metadataRemainders_[port] + frames;
  metadataRemainders_[port] = due % ZE_KEST_METADATA_SAMPLES;
  uint32_t bytes = 0;
  uint32_t lastBlockBytes = 0;
  ze_kest_Utility_QueryInputPortMetadataLen(&Record(), port, due, &bytes, &lastBlockBytes);
  return std::min(bytes, Record().apstInPort[port]->stMeta.sztLevel);
}

void Mixer::ReleaseInputs(uint32_t frames) {
  for (uint32_t port = 0; port < Record().u32InPortCount; ++port) {
    if (HasData(port)) ze_kest_Utility_UpdateSpecificInputPortPcmReadSize(&Record(), frames, port);
  }
}

bool Mixer::HasData(uint32_t port) const {
  return Record().apstInPort[port]->stPcm.sztPcmLevel > 0;
}

}  // namespace kest::player
