// SPDX-License-Identifier: Apache-2.0
// One block of PCM: a port's rings on one side, an interleaved buffer on the other.
#pragma once

#include <cstring>
#include <memory>
#include <string>

#include "ze_kest/port.h"

#include "bench/pages.h"
#include "bench/plain_loops.h"
#include "bench/resampler.h"
#include "bench/table.h"

namespace kest::bench {

// The position of a block in its rings.
struct Layout {
  bool bPadded;  // the rings are 4112 instead of 4096 samples apart, so they use different cache sets
  bool bWraps;   // half of the block is at the start of the rings

  [[nodiscard]] std::string Name() const {
    return std::string(bPadded ? "padded" : "unpadded") + (bWraps ? ", wraps" : "");
  }
};

template <typename Call>
void ForEachShape(Call call) {
  for (const uint32_t u32Channels : {2u, 10u})
    for (const uint32_t u32Frames : {256u, 1024u})
      call(Shape{u32Channels, u32Frames});
}

template <typename Call>
void ForEachLayout(Call call) {
  for (const bool bPadded : {false, true})
    for (const bool bWraps : {false, true})
      call(Layout{bPadded, bWraps});
}

class Block {
 public:
  // u32Width: bytes per sample in the rings.
  Block(Shape shape, Layout layout, uint32_t u32Width);

  // Two channels use the first group, ten the second.
  [[nodiscard]] uint32_t Group() const { return shape_.u32Channels == 2 ? 0 : 1; }
  [[nodiscard]] uint32_t FirstChannel() const { return sztPcmGroupBaseChIdx[Group()]; }
  [[nodiscard]] uint32_t LastChannel() const { return FirstChannel() + shape_.u32Channels - 1; }
  [[nodiscard]] uint32_t Width() const { return u32Width_; }
  [[nodiscard]] Shape TheShape() const { return shape_; }
  [[nodiscard]] size_t Bytes(size_t sztWidth) const {
    return size_t{shape_.u32Channels} * shape_.u32Frames * sztWidth;
  }
  [[nodiscard]] uint32_t RingSamples() const { return stPort_.stPcm.sztPcmRingSamples; }
  [[nodiscard]] uint32_t Position() const { return stPort_.stPcm.sztPcmReadOffset; }

  [[nodiscard]] const ZE_KEST_Filter_s *Filter() const { return &stFilter_; }
  [[nodiscard]] const ZE_KEST_PcmBuffer_s *Pcm() const { return &stPort_.stPcm; }
  [[nodiscard]] PlainRings Plain() { return {rings_.One(), RingSamples(), Position()}; }
  [[nodiscard]] uint8_t *Rings() { return rings_.One(); }
  [[nodiscard]] uint8_t *Frames() { return frames_.Other(); }

  // Makes the filter write to the other block's port as well.
  void AlsoWriteTo(Block &other) { stFilter_.apstOutPort[stFilter_.u32OutPortCount++] = &other.stPort_; }

  // The sources for writing to a port: the channels of the interleaved buffer.
  void *const *Sources() const { return apSource_; }
  const uint16_t *Strides() const { return au16Stride_; }

  // The same work done by libswresample, in two calls when the block wraps.
  void Interleave(const Resampler &resampler, uint32_t u32LinearWidth);
  void Deinterleave(const Resampler &resampler, uint8_t *pu8Frames);

 private:
  [[nodiscard]] Resampler::Planes PlanesAt(uint32_t u32Position);
  [[nodiscard]] uint32_t FramesBeforeWrap() const;

  Shape shape_;
  uint32_t u32Width_;
  Pages rings_;
  Pages frames_;  // interleaved, with room for 4 bytes per sample
  ZE_KEST_Port_s stPort_ = {};
  ZE_KEST_Pipeline_s stPipeline_ = {};
  ZE_KEST_Filter_s stFilter_ = {};
  void *apSource_[ZE_KEST_PCM_CHANNEL_ENTRIES] = {};
  uint16_t au16Stride_[ZE_KEST_PCM_CHANNEL_ENTRIES] = {};
};

using SharedBlock = std::shared_ptr<Block>;

}  // namespace kest::bench
