// SPDX-License-Identifier: Apache-2.0
#include "player/filters/lpcm.h"

#include "ze_kest/utility.h"

namespace kest::player {

Lpcm::Lpcm(const PcmFormat &format, AudioReader reader, uint32_t source, bool loop)
    : Filter("Lpcm", format), reader_(std::move(reader)), loop_(loop) {
  Record().pszConfig = "InputSource=MM";
  block_.source = source;
  block_.payloadLength = kMetadataPayloadBytes;
}

void Lpcm::Process() {
  if (atEnd_) return;
  WithSampleType(Format(), [this](auto sample) {
    auto *samples = buffer_.Samples<decltype(sample)>();
    const uint32_t frames = ReadFile(samples, FramesWanted());
    if (frames == 0) return;
    WriteFrames(samples, frames);
    WriteMetadata(frames);
  });
}

// Fewer frames than asked for only at the end.
template <typename Sample>
uint32_t Lpcm::ReadFile(Sample *interleaved, uint32_t frames) {
  uint32_t done = 0;
  while (done < frames && !atEnd_) {
    const uint32_t got = reader_.Read(interleaved + size_t{done} * Format().channels, frames - done);
    done += got;
    framesSinceStart_ += got;
    if (done < frames) atEnd_ = !BeginAnew();
  }
  return done;
}

bool Lpcm::BeginAnew() {
  const bool fileIsEmpty = framesSinceStart_ == 0;
  if (!loop_ || fileIsEmpty) return false;
  reader_.Rewind();
  framesSinceStart_ = 0;
  return true;
}

// A block comes with the last of its frames, so that it never waits for frames downstream.
void Lpcm::WriteMetadata(uint32_t frames) {
  framesOfBlock_ += frames;
  for (; framesOfBlock_ >= ZE_KEST_METADATA_SAMPLES; framesOfBlock_ -= ZE_KEST_METADATA_SAMPLES) {
    ZE_KEST_DataBuffer_s &ring = Record().apstOutPort[0]->stMeta;
    ze_kest_Utility_CopyFromRingToRingBuffer(
        ring.pu8Buf, ring.sztSize, ring.sztReadOffset, ring.sztLevel + ring.sztWriteSize,
        reinterpret_cast<const uint8_t *>(&block_), kMetadataBlockBytes, 0, 0, kMetadataBlockBytes);
    ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(&Record(), kMetadataBlockBytes);
    ++block_.number;
    block_.framePosition += ZE_KEST_METADATA_SAMPLES;
  }
}

}  // namespace kest::player
