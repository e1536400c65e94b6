// SPDX-License-Identifier: Apache-2.0
// What anyone would write: one sample after another, one channel after another, the wrap tested at every
// sample. In a translation unit of its own at -O2.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kest::bench {

// The rings of a group, one behind the other, and a position in all of them.
struct PlainRings {
  uint8_t *pu8;
  size_t sztRingSamples;
  size_t sztPosition;
};

// By the bytes of a sample: 1 to 4.
void PlainInterleave(size_t sztWidth, const PlainRings &stRings, void *pvFrames, size_t sztChannels,
                     size_t sztFrames);
void PlainDeinterleave(size_t sztWidth, const PlainRings &stRings, const void *pvFrames, size_t sztChannels,
                       size_t sztFrames);
void PlainCopyRings(size_t sztWidth, const PlainRings &stDst, const PlainRings &stSrc, size_t sztChannels,
                    size_t sztFrames);

void PlainRead32To16(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames);
void PlainRead16To24Le(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames);
void PlainRead32To24Le(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames);
void PlainRead16To32(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames);

void Plain16To24(const void *pvSrc, void *pvDst, size_t sztSamples);
void Plain24To16(const void *pvSrc, void *pvDst, size_t sztSamples);
void Plain16To32(const void *pvSrc, void *pvDst, size_t sztSamples);
void Plain32To16(const void *pvSrc, void *pvDst, size_t sztSamples);
void Plain24To32(const void *pvSrc, void *pvDst, size_t sztSamples);
void Plain24LeTo16(const void *pvSrc, void *pvDst, size_t sztSamples);
void Plain24LeTo32(const void *pvSrc, void *pvDst, size_t sztSamples);

}  // namespace kest::bench
