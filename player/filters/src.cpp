// SPDX-License-Identifier: Apache-2.0
#include "player/filters/src.h"

#include <algorithm>

#include "ze_kest/utility.h"

#include "player/filters/filter_material.h"
#include "player/framework/filter_layout.h"
#include "player/framework/parameter_rows.h"

namespace kest::player {
namespace {

constexpr ParameterRange kHertz = {"Hz", 0, Src::kMaxRateHz, 0};

constexpr Parameter kParameters[] = {
    ReadOnly<uint32_t, &Src::InputRateHz>("InRate", "of the input", kHertz),
    ReadOnly<uint32_t, &Src::OutputRateHz>("OutRate", "of the output", kHertz),
};
constexpr Setting kSettings[] = {
    {Src::kRateSetting, WholeNumberRange{Src::kMinRateHz, Src::kMaxRateHz}, true}};

std::unique_ptr<Filter> Make(const FilterLayout &layout, const FilterMaterial &material) {
  const auto rateHz = static_cast<uint32_t>(layout.WholeNumber(Src::kRateSetting));
  return std::make_unique<Src>(material.format, rateHz, material.source);
}

PcmFormat AtRate(PcmFormat format, uint32_t rateHz) {
  format.sampleRate = rateHz;
  return format;
}

}  // namespace

const FilterKind Src::kKind = {"Src", FilterPlace::kBetween, Make, kSettings, kParameters, {}};

Src::Src(const PcmFormat &format, uint32_t outputRateHz, uint32_t source)
    : Filter(kKind, format, AtRate(format, outputRateHz)), metadata_(std::max(source, 1u)) {
  if (outputRateHz != format.sampleRate)
    converter_.emplace(format.sampleRate, outputRateHz, format.channels, format.bitsPerSample);
}

void Src::Process() {
  ConsumeMetadata();
  WithSampleType(Format(), [this](auto sample) {
    auto *converted = converted_.Samples<decltype(sample)>();
    const uint32_t room = FramesWanted();
    uint32_t frames = ConvertInput(converted, room);
    if (Filter::IsComplete()) frames += Drain(converted + size_t{frames} * Format().channels, room - frames);
    if (frames == 0) return;
    WriteFrames(converted, frames);
    metadata_.Write(Record(), frames);
  });
}

template <typename Sample>
uint32_t Src::ConvertInput(Sample *converted, uint32_t room) {
  const uint32_t available = FramesAvailable();
  if (available == 0 || room == 0) return 0;
  if (!converter_) {
    const uint32_t frames = std::min(available, room);
    ReadFrames(0, converted, frames);
    ze_kest_Utility_UpdateAllInputPortPcmReadSize(&Record(), frames);
    return frames;
  }
  auto *input = input_.Samples<Sample>();
  ReadFrames(0, input, available);
  const auto [read, written] = converter_->Convert(input, available, converted, room);
  if (read > 0) ze_kest_Utility_UpdateAllInputPortPcmReadSize(&Record(), read);
  return written;
}

template <typename Sample>
uint32_t Src::Drain(Sample *converted, uint32_t room) {
  const uint32_t frames = converter_ && room > 0 ? converter_->Drain(converted, room) : 0;
  drained_ = !converter_ || frames < room;
  return frames;
}

// A block stands for as many frames of the input as of the output, so the output has blocks of its own.
void Src::ConsumeMetadata() {
  MetadataBlock block{};
  while (TakeMetadataBlock(block))
    metadata_.SetSource(block.source);
}

}  // namespace kest::player
