// SPDX-License-Identifier: Apache-2.0
#include "bench/block.h"

#include <algorithm>

namespace kest::bench {
namespace {

constexpr uint32_t kRingSamples = 4096;
constexpr uint32_t kPadding = 16;
constexpr uint32_t kPosition = 64;

ZE_KEST_PcmGroup_s GroupOf(uint32_t u32Group, uint32_t u32Channels) {
  ZE_KEST_PcmGroup_s stGroup = {static_cast<int32_t>(u32Group), u32Channels, {}};
  std::fill(stGroup.as32ChMap + u32Channels, std::end(stGroup.as32ChMap), -1);
  return stGroup;
}

}  // namespace

Block::Block(Shape shape, Layout layout, uint32_t u32Width)
    : shape_(shape),
      u32Width_(u32Width),
      rings_(size_t{shape.u32Channels} * (kRingSamples + kPadding) * u32Width),
      frames_(Bytes(sizeof(uint32_t))) {
  ZE_KEST_PcmBuffer_s &stPcm = stPort_.stPcm;
  stPort_.bConnected = 1;
  stPcm.sztPcmRingSamples = kRingSamples + (layout.bPadded ? kPadding : 0);
  stPcm.sztPcmReadOffset = layout.bWraps ? stPcm.sztPcmRingSamples - shape.u32Frames / 2 : kPosition;
  stPcm.stPcmInfo = {shape.u32Channels, 48000, u32Width * 8, {}};
  stPcm.u32PcmGroupNum = ZE_KEST_PCM_GROUPS;
  for (uint32_t u32Group = 0; u32Group < ZE_KEST_PCM_GROUPS; ++u32Group)
    stPcm.astPcmGroup[u32Group] = {-1, 0, {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1}};
  stPcm.astPcmGroup[Group()] = GroupOf(Group(), shape.u32Channels);
  stPcm.apu8PcmGroupBuf[Group()] = rings_.One();

  stFilter_.pstParentPipeline = &stPipeline_;
  stFilter_.u32InPortCount = stFilter_.u32OutPortCount = 1;
  stFilter_.apstInPort[0] = stFilter_.apstOutPort[0] = &stPort_;
  stFilter_.sztMaxInPcmProcessSize = stFilter_.sztMaxOutPcmProcessSize = ZE_KEST_NO_BOUND;
  for (uint32_t ch = 0; ch < shape.u32Channels; ++ch) {
    const uint32_t u32Entry = Group() * ZE_KEST_PCM_GROUP_ENTRIES + ch;
    apSource_[u32Entry] = frames_.Other() + size_t{ch} * u32Width;
    au16Stride_[u32Entry] = static_cast<uint16_t>(shape.u32Channels);
  }
}

Resampler::Planes Block::PlanesAt(uint32_t u32Position) {
  Resampler::Planes planes = {};
  for (uint32_t ch = 0; ch < shape_.u32Channels; ++ch)
    planes[ch] = rings_.One() + (size_t{ch} * RingSamples() + u32Position) * u32Width_;
  return planes;
}

uint32_t Block::FramesBeforeWrap() const {
  return std::min(shape_.u32Frames, RingSamples() - Position());
}

void Block::Interleave(const Resampler &resampler, uint32_t u32LinearWidth) {
  const uint32_t u32First = FramesBeforeWrap();
  resampler.Convert({frames_.Other()}, PlanesAt(Position()), u32First);
  if (u32First == shape_.u32Frames) return;
  uint8_t *pu8Rest = frames_.Other() + size_t{u32First} * shape_.u32Channels * u32LinearWidth;
  resampler.Convert({pu8Rest}, PlanesAt(0), shape_.u32Frames - u32First);
}

void Block::Deinterleave(const Resampler &resampler, uint8_t *pu8Frames) {
  const uint32_t u32First = FramesBeforeWrap();
  resampler.Convert(PlanesAt(Position()), {pu8Frames}, u32First);
  if (u32First == shape_.u32Frames) return;
  uint8_t *pu8Rest = pu8Frames + size_t{u32First} * shape_.u32Channels * u32Width_;
  resampler.Convert(PlanesAt(0), {pu8Rest}, shape_.u32Frames - u32First);
}

}  // namespace kest::bench
