// SPDX-License-Identifier: Apache-2.0
#include "player/filters/lpcm.h"

#include "player/filters/filter_material.h"
#include "player/framework/parameter_rows.h"

namespace kest::player {
namespace {

// Volumes in metadata: bit 10 is mute, bits 9 to 3 are whole decibels, bits 2 to 0 eighths; 0x60 is 0 dB.
constexpr uint32_t kUnityVolume = 0x60;
constexpr uint32_t kNoVolume = 0x400 | kUnityVolume;
constexpr uint32_t kLineMode = 0;
constexpr uint32_t kPlainStereo = 1;
constexpr uint32_t kOtherSignal = 3;

// After the counts: what other decoders do to the sound, while this one does nothing.
constexpr Parameter kParameters[] = {
    ReadOnly<uint32_t, &Lpcm::BlocksDecoded>("OkFrmCnt", "blocks of 256 frames decoded",
                                             {"", 0, UINT32_MAX, 0}),
    Fixed<uint32_t{0}>("ErrFrmCnt", "damaged blocks; none, since one ends the run"),
    Fixed<kUnityVolume>("MdVol", "volume of the main programme"),
    Fixed<kNoVolume>("AdVol", "volume of an associated programme"),
    Fixed<kLineMode>("DrcMode", "0 line, 1 RF"),
    Fixed<kPlainStereo>("DmxMode", "0 LtRt, 1 LoRo, 3 Arib"),
    Fixed<uint32_t{0}>("DolbyTb11Enable", "1 is on"),
    Fixed<kOtherSignal>("RfSignalType", "0 Dvb, 1 Atsc, 2 Dtmb, 3 others"),
};
constexpr Setting kSettings[] = {{Lpcm::kFileSetting, FileNameRange{StandardInput::IsMeantBy}, true},
                                 {Lpcm::kRawSetting, TextRange{kRawFormatNeeded}}};

// The file is open already: the format of the run depends on it.
std::unique_ptr<Filter> Make(const FilterLayout & /*layout*/, const FilterMaterial &material) {
  return std::make_unique<Lpcm>(material.format, std::move(*material.reader), material.source, material.loop);
}

}  // namespace

const FilterKind Lpcm::kKind = {"Lpcm", FilterPlace::kInputStart, Make, kSettings, kParameters, {}};

Lpcm::Lpcm(const PcmFormat &format, AudioReader reader, uint32_t source, bool loop)
    : Filter(kKind, format), reader_(std::move(reader)), loop_(loop), metadata_(source) {
  Record().pszConfig = "InputSource=MM";
}

void Lpcm::Process() {
  if (atEnd_) return;
  WithSampleType(Format(), [this](auto sample) {
    auto *samples = buffer_.Samples<decltype(sample)>();
    const uint32_t frames = ReadFile(samples, FramesWanted());
    if (frames == 0) return;
    WriteFrames(samples, frames);
    blocksDecoded_ += metadata_.Write(Record(), frames);
  });
}

// Returns fewer frames than asked for only at the end.
template <typename Sample>
uint32_t Lpcm::ReadFile(Sample *interleaved, uint32_t frames) {
  uint32_t done = 0;
  while (done < frames && !atEnd_) {
    const uint32_t got = reader_.Read(interleaved + size_t{done} * Format().channels, frames - done);
    done += got;
    framesSinceStart_ += got;
    if (done < frames) atEnd_ = !StartOver();
  }
  return done;
}

bool Lpcm::StartOver() {
  const bool fileIsEmpty = framesSinceStart_ == 0;
  if (!loop_ || fileIsEmpty) return false;
  reader_.Rewind();
  framesSinceStart_ = 0;
  Log(ZE_KEST_LEVEL_INFO, "starts %s over", reader_.Name().c_str());
  return true;
}

}  // namespace kest::player
