// SPDX-License-Identifier: Apache-2.0
#include "player/filters/volume.h"

#include <algorithm>

#include "ze_kest/utility.h"

#include "player/filters/filter_material.h"
#include "player/framework/filter_layout.h"
#include "player/framework/parameter_rows.h"
#include "player/framework/saturate.h"

namespace kest::player {
namespace {

constexpr uint32_t kFractionBits = 23;
constexpr uint32_t kUnity = 1u << kFractionBits;

void Analyze(const ZE_KEST_Filter_s *pstFilter, int16_t **channels, uint16_t *strides, uint8_t *present) {
  ze_kest_Utility_AnalyzeInputPort16BitPcmGroup(pstFilter, 0, channels, strides, present);
}

void Analyze(const ZE_KEST_Filter_s *pstFilter, int32_t **channels, uint16_t *strides, uint8_t *present) {
  ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(pstFilter, 0, channels, strides, present);
}

// Rounded to the nearest sample.
template <typename Sample>
void Amplify(const Sample *source, Sample *target, uint32_t frames, uint32_t gain) {
  constexpr int64_t kHalf = int64_t{1} << (kFractionBits - 1);
  for (uint32_t i = 0; i < frames; ++i) {
    target[i] = Saturate<Sample>((int64_t{source[i]} * gain + kHalf) >> kFractionBits);
  }
}

template <bool kMute>
void SwitchMute(Filter &filter) {
  static_cast<Volume &>(filter).SetMute(kMute);
}

constexpr Parameter kParameters[] = {
    Settable<int32_t, &Volume::GainDb, &Volume::SetGainDb>("Gain", "of every channel",
                                                           {"dB", Volume::kMinGainDb, Volume::kMaxGainDb, 0}),
    Settable<uint32_t, &Volume::Mute, &Volume::SetMute>("Mute", "1 is silence", {"", 0, 1, 0}),
};
constexpr Setting kSettings[] = {
    {Volume::kGainSetting, WholeNumberRange{Volume::kMinGainDb, Volume::kMaxGainDb}}};
constexpr FilterCommand kCommands[] = {{"mute=on", SwitchMute<true>}, {"mute=off", SwitchMute<false>}};

std::unique_ptr<Filter> Make(const FilterLayout &layout, const FilterMaterial &material) {
  auto volume = std::make_unique<Volume>(material.format);
  volume->SetGainDb(layout.WholeNumber(Volume::kGainSetting));
  return volume;
}

}  // namespace

const FilterKind Volume::kKind = {"Volume", FilterPlace::kBetween, Make, kSettings, kParameters, kCommands};

void Volume::SetGainDb(int gainDb) {
  gainDb_ = std::clamp(gainDb, kMinGainDb, kMaxGainDb);
}

void Volume::Process() {
  WithSampleType(Format(), [this](auto sample) { ProcessAs<decltype(sample)>(); });
}

// Reads the channels directly in the input rings; with unity gain they are copied from there unchanged.
template <typename Sample>
void Volume::ProcessAs() {
  const uint32_t frames = std::min(FramesToProcess(), FramesInOnePiece());
  if (frames == 0) return;

  std::array<Sample *, ZE_KEST_PCM_CHANNEL_ENTRIES> channels{};
  std::array<uint16_t, ZE_KEST_PCM_CHANNEL_ENTRIES> strides{};
  uint8_t groupPresent = 0;
  Analyze(&Record(), channels.data(), strides.data(), &groupPresent);
  const uint32_t gain = LinearGain();
  auto *target = buffer_.Samples<Sample>();
  for (Sample *&channel : channels) {
    if (channel == nullptr || gain == kUnity) continue;
    Amplify(channel, target, frames, gain);
    channel = target;
    target += frames;
  }
  WriteChannels<Sample>(channels.data(), strides.data(), frames);
  ForwardMetadata(frames);
  ze_kest_Utility_UpdateAllInputPortPcmReadSize(&Record(), frames);
}

uint32_t Volume::FramesInOnePiece() const {
  const ZE_KEST_PcmBuffer_s &input = Record().apstInPort[0]->stPcm;
  return input.sztPcmRingSamples - input.sztPcmReadOffset;
}

uint32_t Volume::LinearGain() const {
  return mute_ ? 0 : ze_kest_Utility_FixedPtDb(gainDb_);
}

}  // namespace kest::player
