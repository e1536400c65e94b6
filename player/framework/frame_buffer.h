// SPDX-License-Identifier: Apache-2.0
// The frames that a filter works on in one cycle.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "player/framework/pcm_format.h"

namespace kest::player {

// Frames per cycle, on every port.
constexpr uint32_t kCycleFrames = 256;

// Interleaved samples of one type. A filter keeps its buffer, so that cycles need no allocation.
template <typename Sample>
using FrameArray = std::array<Sample, size_t{kCycleFrames} * kMaxChannels>;

// Holds both sample widths; a run uses only one of them.
class FrameBuffer {
 public:
  template <typename Sample>
  [[nodiscard]] Sample *Samples();

 private:
  FrameArray<int16_t> samples16_{};
  FrameArray<int32_t> samples32_{};
};

template <>
inline int16_t *FrameBuffer::Samples<int16_t>() {
  return samples16_.data();
}

template <>
inline int32_t *FrameBuffer::Samples<int32_t>() {
  return samples32_.data();
}

// Calls work with a value of the format's sample type.
template <typename Work>
void WithSampleType(const PcmFormat &format, Work &&work) {
  if (format.bitsPerSample == 16) {
    work(int16_t{});
  } else {
    work(int32_t{});
  }
}

}  // namespace kest::player
