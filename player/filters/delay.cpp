// SPDX-License-Identifier: Apache-2.0
#include "player/filters/delay.h"

#include <algorithm>

#include "ze_kest/utility.h"

#include "player/filters/filter_material.h"
#include "player/framework/filter_layout.h"
#include "player/framework/parameter_rows.h"

namespace kest::player {
namespace {

constexpr Parameter kParameters[] = {
    Settable<uint32_t, &Delay::DelayMs, &Delay::SetDelayMs>("DelayTime", "of PCM",
                                                            {"ms", 0, Delay::kMaxDelayMs, 0}),
    Fixed<uint32_t{0}>("RawDelayTime", "of compressed data, which it has none of"),
};
constexpr Setting kSettings[] = {
    {Delay::kDelaySetting, WholeNumberRange{0, static_cast<int>(Delay::kMaxDelayMs)}}};

std::unique_ptr<Filter> Make(const FilterLayout &layout, const FilterMaterial &material) {
  auto delay = std::make_unique<Delay>(material.format);
  delay->SetDelayMs(static_cast<uint32_t>(layout.WholeNumber(Delay::kDelaySetting)));
  return delay;
}

}  // namespace

const FilterKind Delay::kKind = {"Delay", FilterPlace::kBetween, Make, kSettings, kParameters, {}};

Delay::Delay(const PcmFormat &format)
    : Filter(kKind, format), line_(format, MsToFrames(kMaxDelayMs) + kCycleFrames) {}

void Delay::SetDelayMs(uint32_t delayMs) {
  delayMs_ = std::min(delayMs, kMaxDelayMs);
}

PortCapacity Delay::InputCapacity() const {
  PortCapacity capacity = Filter::InputCapacity();
  capacity.metadataBlocks += PortCapacity::ForFrames(MsToFrames(kMaxDelayMs)).metadataBlocks;
  return capacity;
}

bool Delay::IsComplete() const {
  return Filter::IsComplete() && line_.FramesHeld() == 0;
}

void Delay::Process() {
  WithSampleType(Format(), [this](auto sample) { ProcessAs<decltype(sample)>(); });
}

template <typename Sample>
void Delay::ProcessAs() {
  auto *samples = buffer_.Samples<Sample>();
  uint32_t leaving = 0;
  uint32_t frames = FramesToProcess();
  if (frames > 0) {
    leaving = AdjustDelay();
    ReadFrames(0, samples, frames);
    ze_kest_Utility_UpdateAllInputPortPcmReadSize(&Record(), frames);
    line_.Append(samples, frames);
  } else if (UpstreamEnded()) {
    frames = std::min(line_.FramesHeld(), FramesWanted());
  }
  if (frames == 0) return;

  line_.Take(samples, frames);
  leaving += CountLeaving(frames);
  WriteFrames(samples, frames);
  ForwardMetadata(leaving);
}

// Makes the line as long as the delay. Returns how many frames of the input it drops for that.
uint32_t Delay::AdjustDelay() {
  const uint32_t wanted = MsToFrames(delayMs_);
  const uint32_t held = line_.FramesHeld();
  if (wanted >= held) {
    line_.PrependSilence(wanted - held);
    silentFrames_ += wanted - held;
    return 0;
  }
  line_.Drop(held - wanted);
  return CountLeaving(held - wanted);
}

// Of the line's oldest frames, which are leaving it, counts those that came from the input.
uint32_t Delay::CountLeaving(uint32_t frames) {
  const uint32_t silent = std::min(frames, silentFrames_);
  silentFrames_ -= silent;
  return frames - silent;
}

uint32_t Delay::MsToFrames(uint32_t ms) const {
  return static_cast<uint32_t>(uint64_t{ms} * Format().sampleRate / 1000);
}

}  // namespace kest::player
