// SPDX-License-Identifier: Apache-2.0
// The straightforward code for comparison: sample by sample, channel by channel, with a wrap check at every
// sample. In a translation unit of its own, compiled at -O2.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kest::bench {

// The consecutive rings of a group, and a position common to all of them.
struct PlainRings {
  uint8_t *pu8;
  size_t sztRingSamples;
  size_t sztPosition;
};

// sztWidth: bytes per sample, 1 to 4.
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
