// SPDX-License-Identifier: Apache-2.0
#include "bench/plain_loops.h"

namespace kest::bench {
namespace {

struct Packed24 {
  uint8_t au8[3];
};

uint32_t ValueOf(Packed24 sample) {
  return uint32_t{sample.au8[0]} | uint32_t{sample.au8[1]} << 8 | uint32_t{sample.au8[2]} << 16;
}

Packed24 PackedOf(uint32_t u32Value) {
  return {{static_cast<uint8_t>(u32Value), static_cast<uint8_t>(u32Value >> 8),
           static_cast<uint8_t>(u32Value >> 16)}};
}

template <typename Sample>
Sample *ChannelRing(const PlainRings &stRings, size_t sztChannel) {
  return reinterpret_cast<Sample *>(stRings.pu8) + sztChannel * stRings.sztRingSamples;
}

template <typename In, typename Out, typename Convert>
void Read(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames, Convert convert) {
  auto *pOut = static_cast<Out *>(pvFrames);
  for (size_t ch = 0; ch < sztChannels; ++ch) {
    const In *pRing = ChannelRing<const In>(stRings, ch);
    size_t sztPosition = stRings.sztPosition;
    for (size_t i = 0; i < sztFrames; ++i) {
      pOut[i * sztChannels + ch] = convert(pRing[sztPosition]);
      if (++sztPosition == stRings.sztRingSamples) sztPosition = 0;
    }
  }
}

template <typename Sample>
void ReadAsIs(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames) {
  Read<Sample, Sample>(stRings, pvFrames, sztChannels, sztFrames, [](Sample sample) { return sample; });
}

template <typename Sample>
void WriteAsIs(const PlainRings &stRings, const void *pvFrames, size_t sztChannels, size_t sztFrames) {
  const auto *pIn = static_cast<const Sample *>(pvFrames);
  for (size_t ch = 0; ch < sztChannels; ++ch) {
    auto *pRing = ChannelRing<Sample>(stRings, ch);
    size_t sztPosition = stRings.sztPosition;
    for (size_t i = 0; i < sztFrames; ++i) {
      pRing[sztPosition] = pIn[i * sztChannels + ch];
      if (++sztPosition == stRings.sztRingSamples) sztPosition = 0;
    }
  }
}

template <typename Sample>
void CopyAsIs(const PlainRings &stDst, const PlainRings &stSrc, size_t sztChannels, size_t sztFrames) {
  for (size_t ch = 0; ch < sztChannels; ++ch) {
    auto *pDst = ChannelRing<Sample>(stDst, ch);
    const auto *pSrc = ChannelRing<const Sample>(stSrc, ch);
    size_t sztTo = stDst.sztPosition;
    size_t sztFrom = stSrc.sztPosition;
    for (size_t i = 0; i < sztFrames; ++i) {
      pDst[sztTo] = pSrc[sztFrom];
      if (++sztTo == stDst.sztRingSamples) sztTo = 0;
      if (++sztFrom == stSrc.sztRingSamples) sztFrom = 0;
    }
  }
}

template <typename In, typename Out, typename Convert>
void ConvertAll(const void *pvSrc, void *pvDst, size_t sztSamples, Convert convert) {
  const auto *pSrc = static_cast<const In *>(pvSrc);
  auto *pDst = static_cast<Out *>(pvDst);
  for (size_t i = 0; i < sztSamples; ++i)
    pDst[i] = convert(pSrc[i]);
}

template <typename Call>
void ByWidth(size_t sztWidth, Call call) {
  if (sztWidth == 1) call(uint8_t{});
  if (sztWidth == 2) call(uint16_t{});
  if (sztWidth == 3) call(Packed24{});
  if (sztWidth == 4) call(uint32_t{});
}

}  // namespace

void PlainInterleave(size_t sztWidth, const PlainRings &stRings, void *pvFrames, size_t sztChannels,
                     size_t sztFrames) {
  ByWidth(sztWidth,
          [&](auto sample) { ReadAsIs<decltype(sample)>(stRings, pvFrames, sztChannels, sztFrames); });
}

void PlainDeinterleave(size_t sztWidth, const PlainRings &stRings, const void *pvFrames, size_t sztChannels,
                       size_t sztFrames) {
  ByWidth(sztWidth,
          [&](auto sample) { WriteAsIs<decltype(sample)>(stRings, pvFrames, sztChannels, sztFrames); });
}

void PlainCopyRings(size_t sztWidth, const PlainRings &stDst, const PlainRings &stSrc, size_t sztChannels,
                    size_t sztFrames) {
  ByWidth(sztWidth, [&](auto sample) { CopyAsIs<decltype(sample)>(stDst, stSrc, sztChannels, sztFrames); });
}

void PlainRead32To16(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames) {
  Read<uint32_t, uint16_t>(stRings, pvFrames, sztChannels, sztFrames,
                           [](uint32_t u32) { return static_cast<uint16_t>(u32 >> 16); });
}

void PlainRead16To24Le(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames) {
  Read<uint16_t, uint32_t>(stRings, pvFrames, sztChannels, sztFrames,
                           [](uint16_t u16) { return uint32_t{u16} << 8; });
}

void PlainRead32To24Le(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames) {
  Read<uint32_t, uint32_t>(stRings, pvFrames, sztChannels, sztFrames, [](uint32_t u32) { return u32 >> 8; });
}

void PlainRead16To32(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames) {
  Read<uint16_t, uint32_t>(stRings, pvFrames, sztChannels, sztFrames,
                           [](uint16_t u16) { return uint32_t{u16} << 16; });
}

void Plain16To24(const void *pvSrc, void *pvDst, size_t sztSamples) {
  ConvertAll<uint16_t, Packed24>(pvSrc, pvDst, sztSamples,
                                 [](uint16_t u16) { return PackedOf(uint32_t{u16} << 8); });
}

void Plain24To16(const void *pvSrc, void *pvDst, size_t sztSamples) {
  ConvertAll<Packed24, uint16_t>(pvSrc, pvDst, sztSamples,
                                 [](Packed24 sample) { return static_cast<uint16_t>(ValueOf(sample) >> 8); });
}

void Plain16To32(const void *pvSrc, void *pvDst, size_t sztSamples) {
  ConvertAll<uint16_t, uint32_t>(pvSrc, pvDst, sztSamples, [](uint16_t u16) { return uint32_t{u16} << 16; });
}

void Plain32To16(const void *pvSrc, void *pvDst, size_t sztSamples) {
  ConvertAll<uint32_t, uint16_t>(pvSrc, pvDst, sztSamples,
                                 [](uint32_t u32) { return static_cast<uint16_t>(u32 >> 16); });
}

void Plain24To32(const void *pvSrc, void *pvDst, size_t sztSamples) {
  ConvertAll<Packed24, uint32_t>(pvSrc, pvDst, sztSamples,
                                 [](Packed24 sample) { return ValueOf(sample) << 8; });
}

void Plain24LeTo16(const void *pvSrc, void *pvDst, size_t sztSamples) {
  ConvertAll<uint32_t, uint16_t>(pvSrc, pvDst, sztSamples,
                                 [](uint32_t u32) { return static_cast<uint16_t>(u32 >> 8); });
}

void Plain24LeTo32(const void *pvSrc, void *pvDst, size_t sztSamples) {
  ConvertAll<uint32_t, uint32_t>(pvSrc, pvDst, sztSamples, [](uint32_t u32) { return u32 << 8; });
}

}  // namespace kest::bench
