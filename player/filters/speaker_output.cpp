// SPDX-License-Identifier: Apache-2.0
#include "player/filters/speaker_output.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "ze_kest/utility.h"

#include "player/audio/audio_writer.h"
#include "player/audio/sound_card.h"
#include "player/filters/filter_material.h"
#include "player/framework/filter_layout.h"

namespace kest::player {

namespace {

bool IsSoundCard(const std::string &name) {
  return SoundCardIn(name).has_value();
}

constexpr Setting kSettings[] = {{SpeakerOutput::kFileSetting, FileNameRange{IsSoundCard}, true}};

uint64_t FrameLimit(const FilterMaterial &material) {
  if (!material.seconds) return SpeakerOutput::kNoLimit;
  return static_cast<uint64_t>(std::round(*material.seconds * material.format.sampleRate));
}

// A sound card gets the samples as wide as the ports have them.
std::unique_ptr<AudioSink> OpenSink(const std::string &name, const FilterMaterial &material) {
  const auto &[channels, sampleRate, bitsPerSample] = material.format;
  if (const auto device = SoundCardIn(name)) {
    const SampleBits bits = bitsPerSample == 16 ? SampleBits::k16 : SampleBits::k32;
    return std::make_unique<SoundCard>(*device, AudioFormat{channels, sampleRate, bits});
  }
  return std::make_unique<AudioWriter>(name, AudioFormat{channels, sampleRate, material.outputBits});
}

std::unique_ptr<Filter> Make(const FilterLayout &layout, const FilterMaterial &material) {
  const std::string name = layout.FileName(SpeakerOutput::kFileSetting);
  return std::make_unique<SpeakerOutput>(material.format, OpenSink(name, material), FrameLimit(material),
                                         material.realTime);
}

}  // namespace

const FilterKind SpeakerOutput::kKind = {"SpeakerOutput", FilterPlace::kOutputEnd, Make, kSettings, {}, {}};

SpeakerOutput::SpeakerOutput(const PcmFormat &format, std::unique_ptr<AudioSink> sink, uint64_t frameLimit,
                             bool realTime)
    : Filter(kKind, format), sink_(std::move(sink)), frameLimit_(frameLimit) {
  if (realTime && !sink_->SetsThePace()) clock_.emplace(format.sampleRate);
}

void SpeakerOutput::Process() {
  const uint64_t framesLeft = frameLimit_ - framesPlayed_;
  const auto frames = static_cast<uint32_t>(std::min<uint64_t>(FramesAvailable(), framesLeft));
  if (frames > 0) PlayFrames(frames);
  ConsumeMetadata();
}

bool SpeakerOutput::IsComplete() const {
  return framesPlayed_ == frameLimit_ || Filter::IsComplete();
}

void SpeakerOutput::PlayFrames(uint32_t frames) {
  if (clock_ && !clock_->WaitFor(frames)) CountInputXrun(0);
  WithSampleType(Format(), [&](auto sample) {
    auto *samples = buffer_.Samples<decltype(sample)>();
    ReadFrames(0, samples, frames);
    if (!sink_->Write(samples, frames)) CountInputXrun(0);
  });
  ze_kest_Utility_UpdateAllInputPortPcmReadSize(&Record(), frames);
  framesPlayed_ += frames;
}

// Metadata that has arrived belongs to frames that have arrived, so all of it can go.
void SpeakerOutput::ConsumeMetadata() {
  MetadataBlock block{};
  while (TakeMetadataBlock(block))
    metadata_.Count(block);
}

}  // namespace kest::player
