// SPDX-License-Identifier: Apache-2.0
#include "player/filters/delay_line.h"

#include <algorithm>
#include <cstring>

#include "ze_kest/utility.h"

namespace kest::player {

DelayLine::DelayLine(const PcmFormat &format, uint32_t capacityFrames)
    : format_(format),
      capacity_(capacityFrames),
      storage_(size_t{capacityFrames} * format.channels * format.BytesPerSample() / sizeof(uint32_t) + 1) {}

uint8_t *DelayLine::Ring(uint32_t channel) {
  return reinterpret_cast<uint8_t *>(storage_.data()) + size_t{channel} * RingBytes();
}

void DelayLine::Append(const void *interleaved, uint32_t frames) {
  const uint32_t width = format_.BytesPerSample();
  const auto *samples = static_cast<const uint8_t *>(interleaved);
  for (uint32_t channel = 0; channel < format_.channels; ++channel) {
    ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(
        Ring(channel), Ring(channel) + size_t{Position(held_)} * width, RingBytes(),
        samples + size_t{channel} * width, uint64_t{frames} * width, format_.channels, width);
  }
  held_ += frames;
}

void DelayLine::Take(void *interleaved, uint32_t frames) {
  const uint32_t width = format_.BytesPerSample();
  auto *samples = static_cast<uint8_t *>(interleaved);
  for (uint32_t channel = 0; channel < format_.channels; ++channel) {
    ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer(Ring(channel), Ring(channel) + size_t{start_} * width,
                                                        RingBytes(), samples + size_t{channel} * width,
                                                        uint64_t{frames} * width, format_.channels, width);
  }
  Drop(frames);
}

void DelayLine::PrependSilence(uint32_t frames) {
  const uint32_t width = format_.BytesPerSample();
  start_ = Position(capacity_ - frames);
  held_ += frames;
  const uint32_t toRingEnd = std::min(frames, capacity_ - start_);
  for (uint32_t channel = 0; channel < format_.channels; ++channel) {
    std::memset(Ring(channel) + size_t{start_} * width, 0, size_t{toRingEnd} * width);
    std::memset(Ring(channel), 0, size_t{frames - toRingEnd} * width);
  }
}

void DelayLine::Drop(uint32_t frames) {
  start_ = Position(frames);
  held_ -= frames;
}

}  // namespace kest::player
